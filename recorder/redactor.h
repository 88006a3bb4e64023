// Stand-ins for what names a customer and his machines: serials, names, descriptions.

#pragma once

#include "recorder/standIns.h"

#include <nlohmann/json_fwd.hpp>
#include <vector>

namespace recorder
{

class Redactor
{
public:
    /// Takes its stand-ins from there, and leaves there what it drew.
    explicit Redactor(StandIns& given) : standIns(given) {}

    /// Redacts a tape.
    void redact(std::vector<nlohmann::json>& tape);
    /// A command line, as the same run is started on the redacted facility. Of a program other than the
    /// collector only what looks like an MTMS is known to be one.
    std::vector<std::string> commandLine(const std::vector<std::string>& words);

private:
    void redactLine(nlohmann::json& line);
    void redactProgram(nlohmann::json& line);
    void redactAttribute(nlohmann::json& attribute);
    void redactText(nlohmann::json& line);
    std::string selection(const std::string& text);
    std::string value(std::string_view attribute, const std::string& text);
    std::string outputOf(const std::string& program, const std::string& output);
    std::string vitalData(const std::string& line);
    std::string level(const std::string& text);
    std::string mtms(std::string_view text);
    std::string system(std::string_view text);
    std::string location(std::string_view text);
    std::string unlike(std::string_view telling, const std::string& text);

    StandIns& standIns;
    bool misleading = false; ///< a stand-in reads as something that the collector looks for
};

} // namespace recorder
