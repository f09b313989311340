// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"
#include "platform/OpenFile.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

// Access to a file by reference, with the result codes of the classic file manager.
//
// A file has one data fork, its content. It has no resource fork: opening one always returns resFNotFound
// (-193). Only regular files open, so that a pipe or a device can neither block nor deliver data without end.
// Owns the open file.

namespace torka {

inline constexpr OSStatus ioErr = -36;
inline constexpr OSStatus fnOpnErr = -38;
inline constexpr OSStatus eofErr = -39;
inline constexpr OSStatus fnfErr = -43;
inline constexpr OSStatus paramErr = -50;
inline constexpr OSStatus permErr = -54;
inline constexpr OSStatus resFNotFound = -193;

enum FilePermission : std::int8_t { fsRdPerm = 1, fsWrPerm = 2, fsRdWrPerm = 3 };

struct FileInfo {
    std::uint64_t size = 0; // bytes
    bool isFolder = false;
    std::filesystem::file_time_type changed;
};

class FileMac {
public:
    FileMac() = default;
    explicit FileMac(const FSRef& reference);
    FileMac(const FileMac&) = delete;
    FileMac& operator=(const FileMac&) = delete;
    virtual ~FileMac();

    bool valid() const { return isValid; }

    bool openDataFork(FilePermission permission);
    bool dataForkOpen() const { return dataFork.has_value(); }
    // Returns the size in bytes, 0 when the fork is not open.
    std::uint64_t dataForkSize();
    // `count` holds the number of bytes wanted and gets the number of bytes read. Fewer bytes than wanted is
    // eofErr.
    OSStatus dataForkRead(void* buffer, long& count);

    // Given interface; no caller here
    // Returns the result of the last operation.
    OSStatus getError() const { return lastError; }
    bool exists() const;
    // Returns the last component of the path.
    std::string getFileName() const;
    bool getFileInfo(FileInfo& info) const;
    bool closeDataFork();
    // Creates an empty file. Leaves an existing one unchanged.
    bool createDataFork();
    OSStatus dataForkReadWithOffset(void* buffer, long& count, std::int64_t offset);
    OSStatus dataForkWrite(const void* buffer, long& count);
    bool OpenResourceFork(FilePermission permission);
    void CloseResourceFork() {}
    bool ResourceForkOpen() const { return false; }
    std::int16_t GetResourceForkRefNum() const { return -1; }
    // In a resource fork, Use makes it the current one and Restore the previous one. Both fail here.
    bool Use() { return OpenResourceFork(fsRdPerm); }
    bool Restore() { return OpenResourceFork(fsRdPerm); }

private:
    bool Fail(OSStatus error);

    FSRef file;
    std::optional<platform::OpenFile> dataFork;
    OSStatus lastError = noErr;
    bool isValid = false;
};

} // namespace torka
