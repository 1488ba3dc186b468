#pragma once

#include <QString>
#include <functional>

// The ordinary file operations Vorkam's file commands use. Tests replace single members to
// make a step fail where real files cannot be made to, or to watch the order of the steps.
//
// Whatever replaces or keeps books is durable, so that a power cut right after the step brings
// back either the old file or the whole new one: a file is flushed to the disk before it is
// renamed into place, and its folder after the rename, so that the new name itself is on the
// disk.
struct FileOps {
    // Copies `from` to `to` through a temporary file beside `to`, flushed, renamed, folder flushed.
    std::function<bool(const QString& from, const QString& to)> copy;
    // Renames, then flushes the folders of both names.
    std::function<bool(const QString& from, const QString& to)> rename;
    // Renames `from` over an existing `to` in one step: at every moment `to` is either the old
    // file or the new one, whenever the program is stopped. `from` is flushed first and the
    // folder after.
    std::function<bool(const QString& from, const QString& to)> replace;
    // Puts a file's or a folder's data on the disk (fsync). True also where the file system has
    // no such thing (it refuses with EINVAL or ENOTSUP).
    std::function<bool(const QString& path)> flush;
    std::function<bool(const QString& path)> remove;
    std::function<bool(const QString& path)> makeWritable;

    static FileOps& instance();
    static void resetToDefaults();
};
