// The documents that a command's files hold.

#pragma once

#include "document/document.h"

#include <functional>
#include <string>
#include <vector>

namespace tool
{

/// Tells on standard error what the collector would not have written, and what a document lacks.
void tell(const std::string& name, const std::vector<document::Finding>& findings, uint64_t findingCount,
          const document::Missing& missing);

void tell(const document::Document& document);

/// The one document that a file on the command line means. A folder with none or several is a Malformed.
std::string documentOf(const std::string& file);

/// That document, with what there is to tell of it.
document::Document readDocument(const std::string& file);

/// Whether there may be several documents in the files: no more is known of more than one file.
bool areSeveral(const std::vector<std::string>& files);

/// What a command ends with when a file was in trouble.
constexpr int trouble = 2;

/// Does a file's work. What is wrong with the file is told on standard error. \return whether it was done
bool attempt(const std::function<void()>& work);

/// Calls for every file that the files of a command line mean, in their order. One in trouble is told on
/// standard error and keeps no other from its turn. \return the status to end with
int eachFile(const std::vector<std::string>& files, const std::function<void(const std::string& file)>& use);

/// The same with the documents in them, which an inventory database has too: the newest of every system.
int eachDocument(const std::vector<std::string>& files, const std::function<void(document::Document)>& use);

} // namespace tool
