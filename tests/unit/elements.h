// The document's element shapes as its consumers know them.

#pragma once

#include <string>

namespace unit
{

/// A resource's start, without its properties.
inline std::string resource(const std::string& displayName, const std::string& id)
{
    return "<Resource displayName=\"" + displayName + "\" uniqueId=\"" + id + "\">\n" + id + "\n";
}

inline std::string property(const std::string& name, const std::string& displayName, const std::string& code,
                            const std::string& value)
{
    return "<Property name=\"" + name + "\" displayName=\"" + displayName + "\">\n" + code +
           "\n<Value type=\"string\">" + value + "</Value>\n</Property>\n";
}

inline std::string normal(const std::string& code, const std::string& label, const std::string& value)
{
    return property(code, label, code, value);
}

inline std::string reversed(const std::string& code, const std::string& label, const std::string& value)
{
    return property(label, code, code, value);
}

inline std::string list(const std::string& displayName)
{
    return "<ResourceList displayName=\"" + displayName + "\">\n";
}

} // namespace unit
