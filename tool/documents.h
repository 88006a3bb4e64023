// The documents that a command's files hold.

#pragma once

#include "document/document.h"

#include <functional>
#include <string>
#include <vector>

namespace tool
{

/// A document; what an incomplete one lacks is told on standard error.
document::Document readDocument(const std::string& file);

/// Calls for every document, in the files' order. One in trouble is told on standard error and keeps no other
/// from its turn.
/// \return the status to end with
int eachDocument(const std::vector<std::string>& files, const std::function<void(document::Document)>& use);

} // namespace tool
