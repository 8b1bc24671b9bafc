#include "tests/support/vfs_layer.h"

#include <sqlite3.h>

#include <atomic>
#include <cstring>

namespace zorvel {

namespace {

// SQLite gives the memory, in which the real file follows.
struct LayerFile {
    sqlite3_file base;
    sqlite3_vfs* vfs;
    std::string* path;
    // The first sync of a new journal makes its name safe, as SQLite's own layer does.
    bool syncsFolder;
};

CallListener& listenerOf(sqlite3_vfs* vfs) {
    return *static_cast<CallListener*>(vfs->pAppData);
}

sqlite3_vfs* realVfs() {
    static sqlite3_vfs* const real = sqlite3_vfs_find(nullptr);
    return real;
}

LayerFile& layerOf(sqlite3_file* file) {
    return *reinterpret_cast<LayerFile*>(file);
}

sqlite3_file* realOf(sqlite3_file* file) {
    return reinterpret_cast<sqlite3_file*>(reinterpret_cast<LayerFile*>(file) + 1);
}

FileCall callOf(CallKind kind, sqlite3_file* file) {
    return {kind, *layerOf(file).path};
}

// Asks the listener, makes the call, and tells the listener of its success.
template <class Make>
int pass(CallListener& listener, const FileCall& call, Make&& make) {
    if (const int code = listener.before(call).code) return code;
    const int code = make();
    if (code == SQLITE_OK) listener.after(call);
    return code;
}

template <class Make>
int pass(CallKind kind, sqlite3_file* file, Make&& make) {
    return pass(listenerOf(layerOf(file).vfs), callOf(kind, file), make);
}

int closeFile(sqlite3_file* file) {
    delete layerOf(file).path;
    layerOf(file).path = nullptr;
    return realOf(file)->pMethods->xClose(realOf(file));
}

int readFile(sqlite3_file* file, void* bytes, int size, sqlite3_int64 offset) {
    return pass(CallKind::read, file,
                [&] { return realOf(file)->pMethods->xRead(realOf(file), bytes, size, offset); });
}

int writeFile(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset) {
    FileCall call = callOf(CallKind::write, file);
    call.offset = offset;
    call.bytes = {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
    CallListener& listener = listenerOf(layerOf(file).vfs);
    const auto write = [&](std::size_t count) {
        return realOf(file)->pMethods->xWrite(realOf(file), bytes, static_cast<int>(count), offset);
    };
    const Verdict verdict = listener.before(call);
    if (verdict.code != SQLITE_OK) {
        if (verdict.bytesWritten > 0) write(verdict.bytesWritten);
        return verdict.code;
    }
    const int code = write(call.bytes.size());
    if (code == SQLITE_OK) listener.after(call);
    return code;
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    FileCall call = callOf(CallKind::truncate, file);
    call.offset = size;
    return pass(listenerOf(layerOf(file).vfs), call,
                [&] { return realOf(file)->pMethods->xTruncate(realOf(file), size); });
}

int syncFile(sqlite3_file* file, int) {
    FileCall call = callOf(CallKind::sync, file);
    call.syncsFolder = layerOf(file).syncsFolder;
    const int code = pass(listenerOf(layerOf(file).vfs), call, [] { return SQLITE_OK; });
    if (code == SQLITE_OK) layerOf(file).syncsFolder = false;
    return code;
}

int fileSize(sqlite3_file* file, sqlite3_int64* size) {
    return pass(CallKind::fileSize, file,
                [&] { return realOf(file)->pMethods->xFileSize(realOf(file), size); });
}

int lockFile(sqlite3_file* file, int level) {
    return pass(CallKind::lock, file,
                [&] { return realOf(file)->pMethods->xLock(realOf(file), level); });
}

int unlockFile(sqlite3_file* file, int level) {
    return realOf(file)->pMethods->xUnlock(realOf(file), level);
}

int checkReservedLock(sqlite3_file* file, int* reserved) {
    return pass(CallKind::lock, file,
                [&] { return realOf(file)->pMethods->xCheckReservedLock(realOf(file), reserved); });
}

int controlFile(sqlite3_file* file, int request, void* argument) {
    return pass(CallKind::control, file, [&] {
        return realOf(file)->pMethods->xFileControl(realOf(file), request, argument);
    });
}

int sectorSize(sqlite3_file* file) {
    return realOf(file)->pMethods->xSectorSize(realOf(file));
}

int deviceCharacteristics(sqlite3_file* file) {
    return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file));
}

// Of version 1, without shared memory and mapping.
sqlite3_io_methods fileMethods() {
    sqlite3_io_methods methods{};
    methods.iVersion = 1;
    methods.xClose = closeFile;
    methods.xRead = readFile;
    methods.xWrite = writeFile;
    methods.xTruncate = truncateFile;
    methods.xSync = syncFile;
    methods.xFileSize = fileSize;
    methods.xLock = lockFile;
    methods.xUnlock = unlockFile;
    methods.xCheckReservedLock = checkReservedLock;
    methods.xFileControl = controlFile;
    methods.xSectorSize = sectorSize;
    methods.xDeviceCharacteristics = deviceCharacteristics;
    return methods;
}

int openFile(sqlite3_vfs* vfs, const char* path, sqlite3_file* file, int flags, int* outFlags) {
    static const sqlite3_io_methods methods = fileMethods();
    constexpr int journals = SQLITE_OPEN_MAIN_JOURNAL | SQLITE_OPEN_SUPER_JOURNAL;
    file->pMethods = nullptr;
    FileCall call{CallKind::open, path ? path : ""};
    call.creates = (flags & SQLITE_OPEN_CREATE) != 0;
    const int code = pass(listenerOf(vfs), call, [&] {
        return realVfs()->xOpen(realVfs(), path, realOf(file), flags, outFlags);
    });
    if (code != SQLITE_OK) return code;
    LayerFile& layer = layerOf(file);
    layer.vfs = vfs;
    layer.path = new std::string(call.path);
    layer.syncsFolder = call.creates && (flags & journals) != 0;
    file->pMethods = &methods;
    return SQLITE_OK;
}

int removeFile(sqlite3_vfs* vfs, const char* path, int syncFolder) {
    FileCall call{CallKind::remove, path};
    call.syncsFolder = syncFolder != 0;
    return pass(listenerOf(vfs), call, [&] { return realVfs()->xDelete(realVfs(), path, 0); });
}

int accessFile(sqlite3_vfs* vfs, const char* path, int flags, int* result) {
    return pass(listenerOf(vfs), {CallKind::access, path},
                [&] { return realVfs()->xAccess(realVfs(), path, flags, result); });
}

}  // namespace

// All that is not a matter of files stays the real layer's, which asks for no vfs of its own.
VfsLayer::VfsLayer(CallListener& listener) : vfs_(*realVfs()) {
    static std::atomic<int> count = 0;
    name_ = "layer-" + std::to_string(++count);
    vfs_.iVersion = 1;
    vfs_.szOsFile += static_cast<int>(sizeof(LayerFile));
    vfs_.pNext = nullptr;
    vfs_.zName = name_.c_str();
    vfs_.pAppData = &listener;
    vfs_.xOpen = openFile;
    vfs_.xDelete = removeFile;
    vfs_.xAccess = accessFile;
    sqlite3_vfs_register(&vfs_, 0);
}

VfsLayer::~VfsLayer() {
    sqlite3_vfs_unregister(&vfs_);
}

}  // namespace zorvel
