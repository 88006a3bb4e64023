// The commands that read what a collection leaves: its document and its trace log.

#pragma once

#include <string>

namespace tool
{

/// What these commands end with when they cannot do their work.
constexpr int trouble = 2;

struct ShowOptions {
    std::string file;
    bool json = false;
    std::string htmlFile;
};

/// Prints a document as a tree or as JSON, or writes it as a page.
int show(const ShowOptions& options);

struct DiffOptions {
    std::string before;
    std::string after;
    bool json = false;
};

/// Prints what differs. \return 0 when nothing does, else 1
int diff(const DiffOptions& options);

struct FollowOptions {
    std::string log;
    unsigned quietAfter = 60; ///< seconds without a new line that are told
};

/// Shows how far a collection has come until it ends. \return 0 when it was successful, else 1
int follow(const FollowOptions& options);

} // namespace tool
