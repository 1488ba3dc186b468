#pragma once

#include <QString>
#include <functional>

// The ordinary file operations Vorkam's file commands use. Tests replace single members to
// make a step fail where real files cannot be made to.
struct FileOps {
    std::function<bool(const QString& from, const QString& to)> copy;
    std::function<bool(const QString& from, const QString& to)> rename;
    // Renames `from` over an existing `to` in one step: at every moment `to` is either the old
    // file or the new one, whenever the program is stopped.
    std::function<bool(const QString& from, const QString& to)> replace;
    std::function<bool(const QString& path)> remove;
    std::function<bool(const QString& path)> makeWritable;

    static FileOps& instance();
    static void resetToDefaults();
};
