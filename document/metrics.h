// What watches a console wants to know of its collections: the newest run, the age of the document, what the
// machine holds; as OpenMetrics.

#pragma once

#include "document/document.h"
#include "document/explain.h"
#include "document/json.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace document
{

class Metrics
{
public:
    void take(const TracedRun& run);
    /// Of the documents of one system the newest counts.
    void take(const Document& document);

    /// Everything that was taken.
    [[nodiscard]] std::string text() const;

private:
    using Labels = std::vector<std::pair<std::string, std::string>>;

    struct Sample {
        Labels labels;
        std::string value;
    };

    /// What one document tells.
    struct Told {
        std::string time;
        bool complete = false;
        std::map<Labels, int64_t> parts; ///< how many have the same labels
    };

    void add(const std::string& metric, const Labels& labels, std::string value);

    std::map<std::string, std::vector<Sample>> ofRuns; ///< by metric
    std::map<std::string, Told> documents;             ///< by system
};

} // namespace document
