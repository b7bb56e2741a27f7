// Runs a command with all that it starts, and writes down which programs are run and which system calls change
// something in given folders. Kills all of it at one of those calls, before the kernel carries that call out: what is
// in the folders then is what a receiver has after its plug was pulled there.
//
// usage: tracer RECORD KILL_AT FOLDER... -- COMMAND [ARGUMENT...]
//   RECORD   the file to write, one JSON array a line: ["run", ARGUMENT...] or ["change", CALL, PATH]; bytes are code
//            points up to 255
//   KILL_AT  the number of the change, from 1, at which everything is killed; 0 for never
//
// Exit status: the command's; 137 when everything was killed; 2 with one line when tracing is not possible.

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace {

constexpr int MISTAKE = 2;
constexpr int KILLED = 128 + SIGKILL;
constexpr unsigned NOWHERE = UINT_MAX;

/// How a call names what it changes: an argument that is a path, one before it that is the folder it starts from, or an
/// argument that is an open file.
struct Call {
    long number;
    const char* name;
    unsigned path;
    unsigned folder;
    unsigned file;
};

constexpr Call byPath(long number, const char* name, unsigned path) {
    return {number, name, path, NOWHERE, NOWHERE};
}

constexpr Call byPathIn(long number, const char* name, unsigned folder) {
    return {number, name, folder + 1, folder, NOWHERE};
}

constexpr Call byFile(long number, const char* name, unsigned file) {
    return {number, name, NOWHERE, NOWHERE, file};
}

constexpr std::array CHANGES = {
#ifdef SYS_open
    byPath(SYS_open, "open", 0),
    byPath(SYS_creat, "creat", 0),
    byPath(SYS_rename, "rename", 1),
    byPath(SYS_link, "link", 1),
    byPath(SYS_symlink, "symlink", 1),
    byPath(SYS_unlink, "unlink", 0),
    byPath(SYS_rmdir, "rmdir", 0),
    byPath(SYS_mkdir, "mkdir", 0),
    byPath(SYS_mknod, "mknod", 0),
    byPath(SYS_chmod, "chmod", 0),
    byPath(SYS_chown, "chown", 0),
    byPath(SYS_lchown, "lchown", 0),
    byPath(SYS_utime, "utime", 0),
    byPath(SYS_utimes, "utimes", 0),
    byPathIn(SYS_futimesat, "futimesat", 0),
#endif
#ifdef SYS_renameat
    byPathIn(SYS_renameat, "renameat", 2),
#endif
    byPath(SYS_truncate, "truncate", 0),
    byPathIn(SYS_openat, "openat", 0),
    byPathIn(SYS_renameat2, "renameat2", 2),
    byPathIn(SYS_linkat, "linkat", 2),
    byPathIn(SYS_symlinkat, "symlinkat", 1),
    byPathIn(SYS_unlinkat, "unlinkat", 0),
    byPathIn(SYS_mkdirat, "mkdirat", 0),
    byPathIn(SYS_mknodat, "mknodat", 0),
    byPathIn(SYS_fchmodat, "fchmodat", 0),
    byPathIn(SYS_fchownat, "fchownat", 0),
    byPathIn(SYS_utimensat, "utimensat", 0),
    byFile(SYS_write, "write", 0),
    byFile(SYS_pwrite64, "pwrite", 0),
    byFile(SYS_writev, "writev", 0),
    byFile(SYS_sendfile, "sendfile", 0),
    byFile(SYS_copy_file_range, "copy_file_range", 2),
    byFile(SYS_splice, "splice", 2),
    byFile(SYS_ftruncate, "ftruncate", 0),
    byFile(SYS_fallocate, "fallocate", 0),
    byFile(SYS_fchmod, "fchmod", 0),
    byFile(SYS_fchown, "fchown", 0),
};

constexpr std::array OTHERS = {SYS_execve, SYS_chdir, SYS_fchdir};

[[noreturn]] void fail(const std::string& what) {
    std::cerr << "tracer: " << what << ": " << std::generic_category().message(errno) << std::endl;
    std::_Exit(MISTAKE);
}

/// The path without "//", "/./" and "/../", as text: links are not looked up.
std::string tidy(const std::string& path) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin < path.size();) {
        const auto end = std::min(path.find('/', begin), path.size());
        const auto part = path.substr(begin, end - begin);
        if (part == ".." && !parts.empty()) parts.pop_back();
        if (!part.empty() && part != "." && part != "..") parts.push_back(part);
        begin = end + 1;
    }
    std::string whole;
    for (const auto& part : parts) {
        whole += "/" + part;
    }
    return whole.empty() ? "/" : whole;
}

std::string json(std::string_view bytes) {
    constexpr std::string_view DIGITS = "0123456789abcdef";
    std::string text = "\"";
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code >= ' ' && code < 0x7F && byte != '"' && byte != '\\') {
            text += byte;
        } else {
            text += {'\\', 'u', '0', '0', DIGITS[code >> 4U], DIGITS[code & 0xFU]};
        }
    }
    return text + "\"";
}

/// Another process's memory and open files.
class Process {
  public:
    explicit Process(pid_t pid) : pid_(pid) {}

    [[nodiscard]] std::string text(std::uint64_t address) const {
        std::string found;
        std::array<char, 256> piece{};
        while (true) {
            // Never over the end of a page, behind which there may be nothing.
            const auto size = std::min<std::uint64_t>(piece.size(), PAGE - address % PAGE);
            if (!read(address, piece.data(), size)) return found;
            const auto end = std::find(piece.data(), piece.data() + size, '\0');
            found.append(piece.data(), end);
            if (end != piece.data() + size) return found;
            address += size;
        }
    }

    [[nodiscard]] std::vector<std::string> texts(std::uint64_t address) const {
        std::vector<std::string> found;
        std::uintptr_t each = 0;
        while (read(address, &each, sizeof each) && each != 0) {
            found.push_back(text(each));
            address += sizeof each;
        }
        return found;
    }

    /// What is known about an open file; nothing where there is none.
    [[nodiscard]] std::optional<struct stat> file(int descriptor) const {
        const int process = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
        if (process < 0) fail("pidfd_open");
        const int copy = static_cast<int>(syscall(SYS_pidfd_getfd, process, descriptor, 0));
        if (copy < 0 && errno != EBADF) fail("pidfd_getfd");
        close(process);
        if (copy < 0) return std::nullopt;
        struct stat found {};
        const int result = fstat(copy, &found);
        close(copy);
        return result == 0 ? std::optional(found) : std::nullopt;
    }

  private:
    static constexpr std::uint64_t PAGE = 4096;

    bool read(std::uint64_t address, void* target, std::size_t size) const {
        const iovec here{target, size};
        // NOLINTNEXTLINE(performance-no-int-to-ptr): an address in another process
        const iovec there{reinterpret_cast<void*>(static_cast<std::uintptr_t>(address)), size};
        const auto count = process_vm_readv(pid_, &here, 1, &there, 1, 0);
        if (count < 0 && errno != EFAULT) fail("process_vm_readv");
        return count == static_cast<ssize_t>(size);
    }

    pid_t pid_;
};

/// The folders that are looked at, with all below them.
class Folders {
  public:
    explicit Folders(std::vector<std::string> folders) : folders_(std::move(folders)) {}

    [[nodiscard]] bool hold(const std::string& path) const {
        return std::any_of(folders_.begin(), folders_.end(), [&path](const std::string& folder) {
            return path == folder || path.compare(0, folder.size() + 1, folder + "/") == 0;
        });
    }

    /// The path of a file or folder in them, "" when it is none of theirs. They are looked through, as /proc tells
    /// nothing where it is another one's or missing, as it may be in a sandbox.
    [[nodiscard]] std::string find(const struct stat& wanted) const {
        if (!S_ISREG(wanted.st_mode) && !S_ISDIR(wanted.st_mode)) return "";
        for (const auto& folder : folders_) {
            if (isAt(folder, wanted)) return folder;
            std::error_code error;
            for (const auto& each : std::filesystem::recursive_directory_iterator(folder, error)) {
                if (isAt(each.path().string(), wanted)) return each.path().string();
            }
        }
        return "";
    }

  private:
    static bool isAt(const std::string& path, const struct stat& wanted) {
        struct stat found {};
        return lstat(path.c_str(), &found) == 0 && found.st_dev == wanted.st_dev && found.st_ino == wanted.st_ino;
    }

    std::vector<std::string> folders_;
};

struct Arguments {
    const char* record;
    unsigned long killAt;
    std::vector<std::string> folders;
    char** command;
};

class Tracer {
  public:
    Tracer(const Arguments& arguments, pid_t first)
        : record_(arguments.record), folders_(arguments.folders), killAt_(arguments.killAt), first_(first) {
        if (!record_) fail(arguments.record);
        folder_[first] = currentFolder();
    }

    /// Runs until every process has ended; gives the exit status.
    int run() {
        int status = 0;
        for (pid_t pid = 0; (pid = waitpid(-1, &status, __WALL)) > 0 || errno == EINTR;) {
            if (pid > 0 && !WIFSTOPPED(status)) {
                ended(pid, status);
            } else if (pid > 0 && !stopped(pid, status)) {
                killAll();
                return KILLED;
            }
        }
        return result_;
    }

  private:
    static std::string currentFolder() {
        std::array<char, PATH_MAX> path{};
        return getcwd(path.data(), path.size()) == nullptr ? "/" : path.data();
    }

    void ended(pid_t pid, int status) {
        folder_.erase(pid);
        starting_.erase(pid);
        if (pid == first_) result_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }

    /// False when this is where to kill.
    bool stopped(pid_t pid, int status) {
        const int event = status >> 16;
        int signal = 0;
        auto request = PTRACE_CONT;
        folder_.try_emplace(pid, folder_[first_]);
        if (event == PTRACE_EVENT_SECCOMP) {
            if (!entersCall(pid)) return false;
        } else if (event == PTRACE_EVENT_EXEC) {
            write("run", starting_[pid]);
        } else if (event == PTRACE_EVENT_FORK || event == PTRACE_EVENT_VFORK || event == PTRACE_EVENT_CLONE) {
            unsigned long child = 0;
            ptrace(PTRACE_GETEVENTMSG, pid, nullptr, &child);
            folder_[static_cast<pid_t>(child)] = folder_[pid];
        } else if (event == PTRACE_EVENT_STOP) {
            // A new process begins with such a stop; a process that somebody stops has to stay so.
            if (WSTOPSIG(status) != SIGTRAP) request = PTRACE_LISTEN;
        } else if (event == 0) {
            signal = WSTOPSIG(status);
        }
        // NOLINTNEXTLINE(performance-no-int-to-ptr): ptrace takes the signal's number so
        ptrace(request, pid, nullptr, reinterpret_cast<void*>(static_cast<std::intptr_t>(signal)));
        return true;
    }

    bool entersCall(pid_t pid) {
        __ptrace_syscall_info info{};
        if (ptrace(PTRACE_GET_SYSCALL_INFO, pid, sizeof info, &info) <= 0) return true;
        const auto number = static_cast<long>(info.seccomp.nr);
        const std::uint64_t* arguments = info.seccomp.args;
        const Process process(pid);
        if (number == SYS_execve) {
            starting_[pid] = process.texts(arguments[1]);
        } else if (number == SYS_chdir) {
            folder_[pid] = absolute(folder_[pid], process.text(arguments[0]));
        } else if (number == SYS_fchdir) {
            folder_[pid] = pathOf(process.file(static_cast<int>(arguments[0])));
        } else if (const auto* call = find(number)) {
            return changes(pid, *call, arguments);
        }
        return true;
    }

    static const Call* find(long number) {
        const auto* const found =
            std::find_if(CHANGES.begin(), CHANGES.end(), [number](const Call& call) { return call.number == number; });
        return found == CHANGES.end() ? nullptr : found;
    }

    /// Notes a call that changes something in the folders; false when it is the one to kill at.
    bool changes(pid_t pid, const Call& call, const std::uint64_t* arguments) {
        if (onlyReads(call, arguments)) return true;
        const auto path = pathOf(pid, call, arguments);
        if (!folders_.hold(path)) return true;
        if (++count_ == killAt_) return false;
        write("change", {call.name, path});
        return true;
    }

    static bool onlyReads(const Call& call, const std::uint64_t* arguments) {
#ifdef SYS_open
        if (call.number == SYS_open) return (arguments[1] & (O_CREAT | O_TRUNC)) == 0;
#endif
        return call.number == SYS_openat && (arguments[2] & (O_CREAT | O_TRUNC)) == 0;
    }

    std::string pathOf(pid_t pid, const Call& call, const std::uint64_t* arguments) {
        const Process process(pid);
        if (call.path == NOWHERE) return pathOf(process.file(static_cast<int>(arguments[call.file])));
        auto base = folder_[pid];
        if (call.folder != NOWHERE && static_cast<int>(arguments[call.folder]) != AT_FDCWD) {
            base = pathOf(process.file(static_cast<int>(arguments[call.folder])));
        }
        return absolute(base, process.text(arguments[call.path]));
    }

    [[nodiscard]] std::string pathOf(const std::optional<struct stat>& file) const {
        return file ? folders_.find(*file) : "";
    }

    static std::string absolute(const std::string& folder, const std::string& path) {
        return tidy(!path.empty() && path.front() == '/' ? path : folder + "/" + path);
    }

    void write(const char* kind, const std::vector<std::string>& texts) {
        std::string line = "[" + json(kind);
        for (const auto& text : texts) {
            line += ", " + json(text);
        }
        record_ << line << "]" << std::endl;
    }

    void killAll() {
        for (const auto& [pid, folder] : folder_) {
            kill(pid, SIGKILL);
        }
        int status = 0;
        while (waitpid(-1, &status, __WALL) > 0 || errno == EINTR) {
        }
    }

    std::ofstream record_;
    Folders folders_;
    unsigned long killAt_;
    pid_t first_;
    unsigned long count_ = 0;
    int result_ = 0;
    std::map<pid_t, std::string> folder_;
    std::map<pid_t, std::vector<std::string>> starting_;
};

/// Has the kernel stop this process, and all that it starts, at the calls that are looked at, and at no other.
void installFilter() {
    std::vector<sock_filter> program = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<__u32>(offsetof(seccomp_data, nr)))};
    const auto look = [&program](long number) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(number), 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    };
    for (const auto& call : CHANGES) {
        look(call.number);
    }
    for (const long number : OTHERS) {
        look(number);
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog whole{static_cast<unsigned short>(program.size()), program.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) fail("no_new_privs");
    if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &whole) != 0) fail("seccomp");
}

/// Starts the command, which waits until it is traced.
pid_t start(char** command) {
    std::array<int, 2> gate{};
    if (pipe2(gate.data(), O_CLOEXEC) != 0) fail("pipe");
    const pid_t pid = fork();
    if (pid < 0) fail("fork");
    if (pid == 0) {
        char byte = 0;
        close(gate[1]);
        if (read(gate[0], &byte, 1) != 1) std::_Exit(MISTAKE);
        installFilter();
        execvp(command[0], command);
        fail(command[0]);
    }
    constexpr long OPTIONS = PTRACE_O_EXITKILL | PTRACE_O_TRACESECCOMP | PTRACE_O_TRACEEXEC | PTRACE_O_TRACEFORK |
                             PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE;
    if (ptrace(PTRACE_SEIZE, pid, nullptr, OPTIONS) != 0) fail("ptrace");
    if (write(gate[1], "", 1) != 1) fail("pipe");
    close(gate[0]);
    close(gate[1]);
    return pid;
}

std::optional<Arguments> readArguments(int count, char** values) {
    if (count < 3) return std::nullopt;
    Arguments arguments{values[1], std::strtoul(values[2], nullptr, 10), {}, nullptr};
    for (int index = 3; index < count; ++index) {
        if (std::strcmp(values[index], "--") == 0) {
            arguments.command = values + index + 1;
            return index + 1 < count ? std::optional(arguments) : std::nullopt;
        }
        arguments.folders.push_back(tidy(values[index]));
    }
    return std::nullopt;
}

}  // namespace

int main(int count, char** values) {
    const auto arguments = readArguments(count, values);
    if (!arguments) {
        std::cerr << "usage: tracer RECORD KILL_AT FOLDER... -- COMMAND [ARGUMENT...]\n";
        return MISTAKE;
    }
    const pid_t first = start(arguments->command);
    return Tracer(*arguments, first).run();
}
