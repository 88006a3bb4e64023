// The collector's queries select by conditions that must all hold: name="text", name=number, name =? 'text%'.

#include "regularAnswer.h"

#include <stdexcept>

#include "pattern.h"

namespace sweep
{

namespace
{

struct Condition {
    std::string name;
    json value;
    bool prefix = false; ///< the value is what the attribute begins with
};

std::vector<Condition> conditionsOf(const std::string& selection)
{
    static const kordTest::Pattern form(R"re((\w+)\s*(=\?|=)\s*(?:"([^"]*)"|'([^']*)%'|(\d+)))re");
    std::vector<Condition> conditions;
    for (const kordTest::Pattern::Match& match : form.all(selection)) {
        const bool isNumber = !match[5].empty();
        conditions.push_back({.name = match[1],
                              .value = isNumber ? json(std::stoi(match[5])) : json(match[3] + match[4]),
                              .prefix = match[2] == "=?"});
    }
    return conditions;
}

bool holds(const Condition& condition, const json& resource)
{
    const auto found = resource.find(condition.name);
    if (found == resource.end()) return false;
    return condition.prefix ? found->get<std::string>().starts_with(condition.value.get<std::string>())
                            : *found == condition.value;
}

} // namespace

json regularAnswer(const json& facility, const Call& query, const Texts& attributes)
{
    const std::vector<Condition> conditions = conditionsOf(query.selection);
    const json resources = facility.at("resources").value(query.className, json::array());
    json answer = json::array();
    for (const json& resource : resources) {
        bool selected = true;
        for (const Condition& condition : conditions) {
            selected = selected && holds(condition, resource);
        }
        if (!selected) continue;
        json held = json::array();
        for (const std::string& attribute : attributes) {
            if (resource.contains(attribute)) held.push_back({attribute, resource[attribute]});
        }
        answer.push_back({{"attributes", held}});
    }
    if (answer.size() != query.count) throw std::runtime_error("cannot answer " + query.selection);
    return answer;
}

} // namespace sweep
