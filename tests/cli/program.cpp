#include "program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace fs = std::filesystem;

static const char* const programName = "quolkit";
static constexpr int timeLimit = 240; // seconds, for instrumented builds on busy machines

std::string readFile(const fs::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

void writeFile(const fs::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

Program::Program()
{
    std::string pattern = QUOLKIT_CLI_DIR "/run_XXXXXX";
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no folder " + pattern);
    m_root = pattern;
    m_dir = m_root / "bin";
    fs::create_directory(m_dir);
    fs::create_directory(workDir());
    std::error_code error;
    fs::create_hard_link(QUOLKIT_PROGRAM, m_dir / programName, error);
    if (error) fs::copy_file(QUOLKIT_PROGRAM, m_dir / programName);
    answers("");
}

Program::~Program()
{
    if (m_pid) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

Program& Program::answers(const std::string& text)
{
    writeFile(m_root / "stdin", text);
    m_inputClosed = false;
    return *this;
}

Program& Program::withClosedInput()
{
    m_inputClosed = true;
    return *this;
}

Program& Program::start(const Args& args)
{
    return start(workDir(), m_dir / programName, args);
}

Program& Program::start(const fs::path& from, const std::string& name, const Args& args)
{
    finish();
    std::vector<char*> argv{const_cast<char*>(name.c_str())};
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (m_inputClosed)
        posix_spawn_file_actions_addclose(&actions, 0);
    else
        posix_spawn_file_actions_addopen(&actions, 0, (m_root / "stdin").c_str(), O_RDONLY, 0);
    constexpr int create = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, 1, (m_root / "stdout").c_str(), create, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, (m_root / "stderr").c_str(), create, 0600);
    posix_spawn_file_actions_addchdir_np(&actions, from.c_str());
    const int error = posix_spawn(&m_pid, name.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error) throw std::runtime_error("cannot start " + name);
    return *this;
}

int Program::exitCode()
{
    finish();
    return m_exitCode;
}

const std::string& Program::out()
{
    finish();
    return m_out;
}

void Program::finish()
{
    if (!m_pid) return;
    int status = 0;
    if (!waitFor(timeLimit, status)) {
        ADD_FAILURE() << "still running after " << timeLimit << " s";
        kill(m_pid, SIGKILL);
        waitpid(m_pid, &status, 0);
    }
    m_pid = 0;
    m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    m_out = readFile(m_root / "stdout");
    EXPECT_EQ(readFile(m_root / "stderr"), "");
}

bool Program::waitFor(int seconds, int& status) const
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    pid_t ended;
    while ((ended = waitpid(m_pid, &status, WNOHANG)) == 0) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return ended == m_pid;
}

void Program::write(const std::string& name, const std::string& text) const
{
    writeFile(m_dir / name, text);
}

std::string Program::read(const std::string& name)
{
    finish();
    return readFile(m_dir / name);
}

bool Program::has(const std::string& name)
{
    finish();
    return fs::exists(m_dir / name);
}

std::set<std::string> Program::files()
{
    finish();
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_dir)) names.insert(entry.path().filename());
    names.erase(programName);
    return names;
}
