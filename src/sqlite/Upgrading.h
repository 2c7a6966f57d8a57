// From the version of a file to the newest one.
#pragma once

#include <optional>

#include "korvex/sqlite/Database.h"
#include "sqlite/Connection.h"
#include "sqlite/RowSource.h"

namespace korvex {

// The version that the file has; absent when it has none.
[[nodiscard]] Outcome<std::optional<double>> versionOf(Connection& connection);
// Runs the upgrades that the file needs, in ascending order.
[[nodiscard]] Failure upgradeFile(Connection& connection, const Loaded& loaded, bool foreignKeys,
                                  const UpgradeObserver& observer);
// Gives a version to a file that has none.
[[nodiscard]] Failure adoptVersion(Connection& connection, double version);

}  // namespace korvex
