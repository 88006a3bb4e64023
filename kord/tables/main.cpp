// kord-tables: prints docs/codes.md, with --manual docs/man/kord-codes.7, or with --json everything that the
// collector's tables know.

#include "tables.h"

#include <cstdio>
#include <cstring>

int main(int argc, char* argv[])
{
    if (argc == 1) {
        tables::printCodes();
    } else if (argc == 2 && strcmp(argv[1], "--json") == 0) {
        tables::printJson();
    } else if (argc == 2 && strcmp(argv[1], "--manual") == 0) {
        tables::printManual();
    } else {
        fputs("usage: kord-tables [--json | --manual]\n", stderr);
        return 2;
    }
    return fflush(stdout) == 0 && ferror(stdout) == 0 ? 0 : 1;
}
