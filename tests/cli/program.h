// Runs the program as a user does: a process of its own, with arguments that no shell has touched.
#ifndef TESTS_CLI_PROGRAM_H
#define TESTS_CLI_PROGRAM_H

#include <sys/types.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

// A folder with the program in it, and one run after another there. The working directory of a run is
// another, empty folder, so that it shows where a relative name leads. A start that reaches the title takes
// seconds: start several at once, and look at the first one then.
class Program {
public:
    using Args = std::vector<std::string>;

    Program();
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // For the next start: what stands on the console's input, which otherwise is at its end from the
    // beginning.
    Program& answers(const std::string& text);
    Program& withClosedInput();

    // The name under which it is called is `name` behind its folder, or as it stands if `from` is another
    // folder to run in.
    Program& start(const Args& args);
    Program& start(const std::filesystem::path& from, const std::string& name, const Args& args);

    // These wait for the end of the run. It is a failure if that takes too long or if there is anything on
    // stderr.
    int exitCode();
    const std::string& out();

    // Files that stand beside the program.
    std::string path(const std::string& name) const { return m_dir / name; }
    void write(const std::string& name, const std::string& text) const;
    std::string read(const std::string& name);
    bool has(const std::string& name);
    std::set<std::string> files();

    std::filesystem::path workDir() const { return m_root / "work"; }
    std::filesystem::path root() const { return m_root; }

private:
    void finish();
    bool waitFor(int seconds, int& status) const;

    std::filesystem::path m_root;
    std::filesystem::path m_dir;
    bool m_inputClosed = false;
    pid_t m_pid = 0;
    int m_exitCode = -1;
    std::string m_out;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& text);

#endif
