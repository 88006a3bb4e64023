// What the simulated console answers of itself to a recorded call, without fault rules.

#pragma once

#include "image/run.h"
#include "recorder/gatherer.h"

namespace recorder
{

class RegularConsole
{
public:
    /// A gathered console, which must live as long.
    explicit RegularConsole(const Gatherer& gathered);

    /// The outcome in the form of a recorded one's; null where the call fails.
    [[nodiscard]] nlohmann::json outcome(const Call& call) const;

private:
    [[nodiscard]] nlohmann::json answer(const Call& call) const;
    [[nodiscard]] nlohmann::json program(const Call& call) const;

    const Gatherer& gatherer;
    nlohmann::json frame; ///< the facility but for its resources
    std::string compiled;
    image::Image image;
};

} // namespace recorder
