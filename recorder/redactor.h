// Stand-ins for what names a customer and his machines: serials, names, descriptions.
//
// A stand-in has the length and the kinds of characters of what it stands for: digits for digits, letters for
// letters, everything else as it was. Texts that begin alike have stand-ins that begin alike and part where
// they part. So whatever the collector cuts, joins or compares stays what it was to each other. The stand-ins
// are drawn by chance, anew for every recording: nothing leads back from them.

#pragma once

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace recorder
{

class Redactor
{
public:
    /// Redacts a tape.
    void redact(std::vector<nlohmann::json>& tape);
    /// A word of the recorded command line, as the same run is started on the redacted facility.
    std::string argument(const std::string& word);

private:
    void redactLine(nlohmann::json& line);
    void redactProgram(nlohmann::json& line);
    void redactText(nlohmann::json& line);
    std::string selection(const std::string& text);
    std::string value(std::string_view attribute, const std::string& text);
    std::string vitalData(const std::string& line);
    std::string user(const std::string& output);
    std::string mtms(std::string_view text);
    std::string location(std::string_view text);
    std::string standIn(std::string_view text, bool hexadecimal = false);
    /// The text with stand-ins for what was redacted elsewhere.
    [[nodiscard]] std::string known(const std::string& text) const;
    /// Whether this draw has a stand-in that is itself one of the texts to hide.
    [[nodiscard]] bool isAmbiguous() const;

    std::unordered_map<std::string, unsigned> draws; ///< one for each beginning that was seen
    std::unordered_map<std::string, std::string> standIns;
    std::set<size_t, std::greater<>> lengths; ///< of the texts that have stand-ins
    bool misleading = false;                  ///< a stand-in reads as something that the collector looks for
};

} // namespace recorder
