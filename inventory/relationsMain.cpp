// kord-relations: prints the relations of an inventory for another engine.

#include "inventory/relations.h"

#include <cstdio>
#include <string>
#include <string_view>

int main(int argc, char* argv[])
{
    using inventory::Engine;
    const std::string_view engine = argc == 2 ? argv[1] : "";
    if (engine != "postgresql" && engine != "clickhouse") {
        std::fputs("usage: kord-relations postgresql|clickhouse\n", stderr);
        return 2;
    }
    const std::string sql =
        inventory::relations(engine == "postgresql" ? Engine::postgresql : Engine::clickhouse);
    const bool printed = std::fwrite(sql.data(), 1, sql.size(), stdout) == sql.size();
    return printed && std::fflush(stdout) == 0 ? 0 : 2;
}
