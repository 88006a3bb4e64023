// The resources behind a recording's answers, as far as they showed, and what the console's programs printed.

#pragma once

#include "facility/schema.h"
#include "recorder/calls.h"

#include <list>
#include <map>
#include <unordered_map>

namespace recorder
{

namespace facility = console::facility;
namespace image = console::image;

/// Reads calls one after the other and puts together the console that would have answered them. What a later
/// call contradicts stays as it was first seen.
class Gatherer
{
public:
    void take(const Call& call);

    /// The console, its systems and its resources as a facility file has them.
    [[nodiscard]] nlohmann::ordered_json facility() const;
    /// What the resource of that number answers to the action; null when that is not known.
    [[nodiscard]] nlohmann::json imageLevel(uint64_t number) const;

private:
    using Resource = nlohmann::ordered_json;
    using Place = std::list<Resource>::iterator;
    using Values = std::vector<std::pair<std::string, nlohmann::json>>;
    struct Found {
        uint64_t number;
        Values values;
    };
    struct Class {
        std::string name;
        std::list<Resource> resources;
        std::unordered_map<uint64_t, Place> byNumber;
        std::map<std::string, std::vector<Place>> bySelection; ///< each selection's first answer
    };

    void takeAnswer(const Call& call);
    void takeLevel(const Call& call);
    void takeProgram(const Call& call);
    Class& classOf(const std::string& name);
    void add(Class& to, const std::vector<Found>& found, const std::string& selection);
    void complete(const std::string& className, Resource& resource, const Values& values) const;
    [[nodiscard]] bool fits(const std::string& className, const std::string& name,
                            const nlohmann::json& value) const;

    facility::Schema schema;
    std::list<Class> classes;
    nlohmann::ordered_json console = nlohmann::ordered_json::object();
    nlohmann::ordered_json systems = nlohmann::ordered_json::object();
};

/// Of a command line `qmstat -r sys -m MTMS -F state` the MTMS; empty for any other.
std::string systemAskedFor(const std::vector<std::string>& arguments);

} // namespace recorder
