#include "addTarnKord.h"

int main(int argc, char* argv[])
{
    return addTarnKord(argc, argv);
}
