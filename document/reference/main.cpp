// kord-reference: prints what is made from the table of parts: schema, page or manual.

#include "reference.h"

#include <cstdio>
#include <string_view>

int main(int argc, char* argv[])
{
    const std::string_view what = argc == 2 ? argv[1] : "";
    const std::string text = what == "schema"   ? reference::schema()
                             : what == "page"   ? reference::page()
                             : what == "manual" ? reference::manual()
                                                : "";
    const bool printed = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    return !text.empty() && printed && std::fflush(stdout) == 0 ? 0 : 2;
}
