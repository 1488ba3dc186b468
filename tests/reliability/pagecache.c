/* A page cache that a power cut empties, for vorkam_powercut --cache.
 *
 * Preloaded into the process that performs an operation, this library watches every call that
 * changes a file or a folder under VORKAM_CACHE_ROOT. Before the first change to a file since
 * it was last flushed (fsync, fdatasync) it saves the file's content; before the first change
 * to a folder since it was last flushed it saves the folder's names, with a hard link to each
 * file. Each step is one line of VORKAM_CACHE_LOG. After the process is killed, vorkam_powercut
 * puts back every saved state that no flush made durable: what a machine shows after a power
 * cut whose disk kept nothing that was not flushed.
 */
#define _GNU_SOURCE
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <linux/fs.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

static char g_root[PATH_MAX];
static size_t g_rootLength;
static char g_saves[PATH_MAX];
static char g_logPath[PATH_MAX];
static int g_watching;
static int g_count;
static pthread_mutex_t g_lock = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;

/* What changed since its last flush and has been saved already. */
static ino_t g_files[8192];
static int g_fileCount;
static char g_folders[512][PATH_MAX];
static int g_folderCount;

__attribute__((constructor)) static void start(void)
{
    const char* root = getenv("VORKAM_CACHE_ROOT");
    const char* log = getenv("VORKAM_CACHE_LOG");
    if (!root || !log || !*root || strlen(root) >= PATH_MAX - 1)
        return;
    strcpy(g_root, root);
    g_rootLength = strlen(g_root);
    snprintf(g_saves, sizeof g_saves, "%s.d", log);
    snprintf(g_logPath, sizeof g_logPath, "%s", log);
    REAL(mkdir)(g_saves, 0700);
    g_watching = 1;
}

static void note(const char* format, ...)
{
    char line[3 * PATH_MAX];
    va_list args;
    va_start(args, format);
    const int n = vsnprintf(line, sizeof line, format, args);
    va_end(args);
    /* Opened for each line: the program may close or reuse any descriptor it did not open. */
    const int fd = REAL(open)(g_logPath, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (fd >= 0 && n > 0 && n < (int)sizeof line)
        REAL(write)(fd, line, (size_t)n);
    if (fd >= 0)
        close(fd);
}

/* The path the descriptor `fd` is open on; false when the system cannot tell. */
static int pathOf(int fd, char* out)
{
    char link[64];
    snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const ssize_t n = readlink(link, out, PATH_MAX - 1);
    out[n > 0 ? n : 0] = 0;
    return n > 0;
}

/* `path` made absolute (relative to `folder`, a descriptor, or the working folder). */
static void absolute(int folder, const char* path, char* out)
{
    if (path[0] == '/') {
        snprintf(out, PATH_MAX, "%s", path);
        return;
    }
    char base[PATH_MAX] = "";
    if (folder == AT_FDCWD) {
        if (!getcwd(base, sizeof base))
            base[0] = 0;
    } else {
        pathOf(folder, base);
    }
    snprintf(out, PATH_MAX, "%s/%s", base, path);
}

static int watched(const char* path)
{
    return g_watching && strncmp(path, g_root, g_rootLength) == 0
        && (path[g_rootLength] == '/' || path[g_rootLength] == 0);
}

static void folderOf(const char* path, char* out)
{
    snprintf(out, PATH_MAX, "%s", path);
    char* slash = strrchr(out, '/');
    if (slash && slash != out)
        *slash = 0;
}

static void saveFile(const char* path, ino_t inode)
{
    for (int i = 0; i < g_fileCount; ++i)
        if (g_files[i] == inode)
            return;
    char copy[PATH_MAX];
    snprintf(copy, sizeof copy, "%s/c%d", g_saves, ++g_count);
    const int from = REAL(open)(path, O_RDONLY | O_CLOEXEC);
    const int to = REAL(open)(copy, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    char buffer[65536];
    ssize_t n;
    while (from >= 0 && to >= 0 && (n = read(from, buffer, sizeof buffer)) > 0)
        REAL(write)(to, buffer, (size_t)n);
    if (from >= 0)
        close(from);
    if (to >= 0)
        close(to);
    if (g_fileCount < (int)(sizeof g_files / sizeof g_files[0]))
        g_files[g_fileCount++] = inode;
    note("C\t%lu\t%s\n", (unsigned long)inode, copy);
}

static void saveFolder(const char* folder)
{
    for (int i = 0; i < g_folderCount; ++i)
        if (strcmp(g_folders[i], folder) == 0)
            return;
    char listing[PATH_MAX];
    snprintf(listing, sizeof listing, "%s/l%d", g_saves, ++g_count);
    FILE* out = fopen(listing, "we");
    DIR* dir = opendir(folder);
    struct dirent* entry;
    while (out && dir && (entry = readdir(dir))) {
        if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0)
            continue;
        char path[PATH_MAX];
        struct stat st;
        snprintf(path, sizeof path, "%s/%s", folder, entry->d_name);
        if (lstat(path, &st) != 0)
            continue;
        if (S_ISDIR(st.st_mode)) {
            fprintf(out, "D\t%s\n", entry->d_name);
        } else if (S_ISREG(st.st_mode)) {
            char kept[PATH_MAX];
            snprintf(kept, sizeof kept, "%s/h%d", g_saves, ++g_count);
            if (REAL(link)(path, kept) == 0)
                fprintf(out, "F\t%s\t%lu\t%s\n", entry->d_name, (unsigned long)st.st_ino, kept);
        }
    }
    if (dir)
        closedir(dir);
    if (out)
        fclose(out);
    if (g_folderCount < (int)(sizeof g_folders / sizeof g_folders[0]))
        strcpy(g_folders[g_folderCount++], folder);
    note("L\t%s\t%s\n", folder, listing);
}

/* Before a change of the names in the folder of `path`. */
static void beforeName(int folder, const char* path)
{
    if (!g_watching || !path)
        return;
    char full[PATH_MAX], parent[PATH_MAX];
    absolute(folder, path, full);
    if (!watched(full))
        return;
    pthread_mutex_lock(&g_lock);
    folderOf(full, parent);
    saveFolder(parent);
    pthread_mutex_unlock(&g_lock);
}

/* Before a change of the content of the file open as `fd`. */
static void beforeContent(int fd)
{
    struct stat st;
    if (!g_watching || fstat(fd, &st) != 0 || !S_ISREG(st.st_mode))
        return;
    char path[PATH_MAX];
    if (!pathOf(fd, path) || !watched(path))
        return;
    pthread_mutex_lock(&g_lock);
    saveFile(path, st.st_ino);
    pthread_mutex_unlock(&g_lock);
}

/* After a successful flush of `fd`: what it holds is on the disk. */
static void flushed(int fd)
{
    struct stat st;
    if (!g_watching || fstat(fd, &st) != 0)
        return;
    pthread_mutex_lock(&g_lock);
    if (S_ISDIR(st.st_mode)) {
        char path[PATH_MAX];
        if (pathOf(fd, path)) {
            for (int i = 0; i < g_folderCount; ++i)
                if (strcmp(g_folders[i], path) == 0) {
                    if (i != --g_folderCount)
                        strcpy(g_folders[i], g_folders[g_folderCount]);
                    note("SD\t%s\n", path);
                    break;
                }
        }
    } else {
        for (int i = 0; i < g_fileCount; ++i)
            if (g_files[i] == st.st_ino) {
                g_files[i] = g_files[--g_fileCount];
                note("S\t%lu\n", (unsigned long)st.st_ino);
                break;
            }
    }
    pthread_mutex_unlock(&g_lock);
}

static void beforeOpen(int folder, const char* path, int flags)
{
    if (!g_watching || !(flags & (O_CREAT | O_TRUNC)))
        return;
    char full[PATH_MAX];
    absolute(folder, path, full);
    if (!watched(full))
        return;
    struct stat st;
    if (stat(full, &st) != 0) {
        if (flags & O_CREAT)
            beforeName(AT_FDCWD, full);
    } else if ((flags & O_TRUNC) && S_ISREG(st.st_mode)) {
        pthread_mutex_lock(&g_lock);
        saveFile(full, st.st_ino);
        pthread_mutex_unlock(&g_lock);
    }
}

static mode_t modeOf(int flags, va_list args)
{
    return (flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE ? (mode_t)va_arg(args, int) : 0;
}

int open(const char* path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = modeOf(flags, args);
    va_end(args);
    beforeOpen(AT_FDCWD, path, flags);
    return REAL(open)(path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = modeOf(flags, args);
    va_end(args);
    beforeOpen(AT_FDCWD, path, flags);
    return REAL(open64)(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = modeOf(flags, args);
    va_end(args);
    beforeOpen(folder, path, flags);
    return REAL(openat)(folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = modeOf(flags, args);
    va_end(args);
    beforeOpen(folder, path, flags);
    return REAL(openat64)(folder, path, flags, mode);
}

int creat(const char* path, mode_t mode) { return open(path, O_CREAT | O_WRONLY | O_TRUNC, mode); }

ssize_t write(int fd, const void* data, size_t size)
{
    beforeContent(fd);
    return REAL(write)(fd, data, size);
}

ssize_t pwrite(int fd, const void* data, size_t size, off_t at)
{
    beforeContent(fd);
    return REAL(pwrite)(fd, data, size, at);
}

ssize_t pwrite64(int fd, const void* data, size_t size, off64_t at)
{
    beforeContent(fd);
    return REAL(pwrite64)(fd, data, size, at);
}

ssize_t writev(int fd, const struct iovec* parts, int count)
{
    beforeContent(fd);
    return REAL(writev)(fd, parts, count);
}

ssize_t pwritev(int fd, const struct iovec* parts, int count, off_t at)
{
    beforeContent(fd);
    return REAL(pwritev)(fd, parts, count, at);
}

int ftruncate(int fd, off_t length)
{
    beforeContent(fd);
    return REAL(ftruncate)(fd, length);
}

int ftruncate64(int fd, off64_t length)
{
    beforeContent(fd);
    return REAL(ftruncate64)(fd, length);
}

int fallocate(int fd, int mode, off_t at, off_t length)
{
    beforeContent(fd);
    return REAL(fallocate)(fd, mode, at, length);
}

ssize_t copy_file_range(int in, off64_t* inAt, int out, off64_t* outAt, size_t size, unsigned int flags)
{
    beforeContent(out);
    return REAL(copy_file_range)(in, inAt, out, outAt, size, flags);
}

ssize_t sendfile(int out, int in, off_t* at, size_t size)
{
    beforeContent(out);
    return REAL(sendfile)(out, in, at, size);
}

ssize_t sendfile64(int out, int in, off64_t* at, size_t size)
{
    beforeContent(out);
    return REAL(sendfile64)(out, in, at, size);
}

int ioctl(int fd, unsigned long request, ...)
{
    va_list args;
    va_start(args, request);
    void* argument = va_arg(args, void*);
    va_end(args);
    if (request == FICLONE || request == FICLONERANGE)
        beforeContent(fd);
    return REAL(ioctl)(fd, request, argument);
}

int fsync(int fd)
{
    const int result = REAL(fsync)(fd);
    if (result == 0)
        flushed(fd);
    return result;
}

int fdatasync(int fd)
{
    const int result = REAL(fdatasync)(fd);
    if (result == 0)
        flushed(fd);
    return result;
}

int rename(const char* from, const char* to)
{
    beforeName(AT_FDCWD, from);
    beforeName(AT_FDCWD, to);
    return REAL(rename)(from, to);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to)
{
    beforeName(fromFolder, from);
    beforeName(toFolder, to);
    return REAL(renameat)(fromFolder, from, toFolder, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned int flags)
{
    beforeName(fromFolder, from);
    beforeName(toFolder, to);
    return REAL(renameat2)(fromFolder, from, toFolder, to, flags);
}

int unlink(const char* path)
{
    beforeName(AT_FDCWD, path);
    return REAL(unlink)(path);
}

int unlinkat(int folder, const char* path, int flags)
{
    beforeName(folder, path);
    return REAL(unlinkat)(folder, path, flags);
}

int remove(const char* path)
{
    beforeName(AT_FDCWD, path);
    return REAL(remove)(path);
}

int rmdir(const char* path)
{
    beforeName(AT_FDCWD, path);
    return REAL(rmdir)(path);
}

int link(const char* from, const char* to)
{
    beforeName(AT_FDCWD, to);
    return REAL(link)(from, to);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags)
{
    beforeName(toFolder, to);
    return REAL(linkat)(fromFolder, from, toFolder, to, flags);
}

int mkdir(const char* path, mode_t mode)
{
    beforeName(AT_FDCWD, path);
    return REAL(mkdir)(path, mode);
}

int mkdirat(int folder, const char* path, mode_t mode)
{
    beforeName(folder, path);
    return REAL(mkdirat)(folder, path, mode);
}
