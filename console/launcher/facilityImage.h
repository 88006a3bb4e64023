// A run's compiled facility, as the launcher looks into it.

#pragma once

#include "image/run.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace console::launcher
{

/// What a recording says about the run that it was taken of.
struct Recording {
    std::vector<std::string> command; ///< empty: the facility is no recording
    std::string date;                 ///< empty: unknown
    int64_t status = 0;               ///< -1: unknown
};

/// The image under a root, mapped while this lives.
class FacilityImage
{
public:
    /// A Failure when there is none that can be read.
    explicit FacilityImage(const std::filesystem::path& root);
    ~FacilityImage();
    FacilityImage(FacilityImage&& other) noexcept;
    FacilityImage& operator=(FacilityImage&&) = delete;

    [[nodiscard]] std::string_view bytes() const { return {image.base, size}; }
    [[nodiscard]] uint64_t ruleCount() const { return image.header().ruleCount; }
    [[nodiscard]] Recording recording() const;

private:
    image::Image image;
    size_t size = 0;
};

} // namespace console::launcher
