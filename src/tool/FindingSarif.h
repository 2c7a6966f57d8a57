// Findings as a log in the Static Analysis Results Interchange Format, version 2.1.0.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "checks/Finding.h"
#include "tool/ElementJson.h"
#include "tool/InputFiles.h"

namespace korvex {

// A log of one run, with an empty array of "results". It describes every rule, found or not; inputs that could not be
// read are notifications of the run and make it unsuccessful.
[[nodiscard]] Json sarifLog(const std::vector<UnreadablePath>& unreadable);
// One of the results.
[[nodiscard]] Json sarifResult(const Finding& finding);

// The path as a URI reference, relative if the path is relative; other bytes are percent-encoded.
[[nodiscard]] std::string uriReference(std::string_view path);

}  // namespace korvex
