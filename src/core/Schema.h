#pragma once

#include <filesystem>

// The version of the database's schema (its user_version).
namespace core {

constexpr int schemaVersion = 2;

// Brings a database file of an earlier version up to this one. The file is first copied to "<file>.version<its
// version>", which is on the disk before anything is changed; then all steps run in one transaction. Does nothing to a
// file of this version. Throws DatabaseError, the file being as it was, when it is of a newer version, cannot be
// copied, or a step fails.
void BringUp(const std::filesystem::path& file);

}  // namespace core
