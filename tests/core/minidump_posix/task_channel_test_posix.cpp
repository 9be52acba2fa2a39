// Linux: the task service's socket is its process's own, in a directory
// only its user may enter; a socket a killed process left behind doesn't
// stand in the way, and another user can't reach the service.
#include <norvane_1/minidump_task.h>

#include "test_environment.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace {

std::string directoryOfServices() {
    char const* temporary = std::getenv("TMPDIR");
    return std::string(temporary && *temporary ? temporary : "/tmp") + "/norvane-" + std::to_string(::geteuid());
}

sockaddr_un serviceAddress() {
    std::string const path = directoryOfServices() + "/minidump_task_pipe." + std::to_string(::getpid());
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return address;
}

bool connects(sockaddr_un const& address) {
    int const client = ::socket(AF_UNIX, SOCK_STREAM, 0);
    bool const connected = ::connect(client, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
    ::close(client);
    return connected;
}

class TaskChannel : public ::testing::Test {
protected:
    norvane_test::ScratchDirectory logs{"task-channel"};
    norvane_test::ScopedVariable logDirectory{"NORVANE_LOG_DIR", logs.path().string()};
};

TEST_F(TaskChannel, AStaleSocketOfThisProcessIdGivesWayToTheService) {
    ::mkdir(directoryOfServices().c_str(), 0700);
    sockaddr_un const address = serviceAddress();
    int const stale = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(stale, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0) << std::strerror(errno);
    ::close(stale);  // the file stays, as a killed process leaves it
    EXPECT_FALSE(connects(address));
    norvane_1::startExecuteMinidumpTaskthread();
    EXPECT_TRUE(connects(address));
    norvane_1::stopExecuteMinidumpTaskThread();
    struct stat status {};
    EXPECT_NE(::stat(address.sun_path, &status), 0) << "the service leaves no socket behind";
    ASSERT_EQ(::stat(directoryOfServices().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(TaskChannel, AnotherUserCantReachTheService) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to act as another user";
    norvane_1::startExecuteMinidumpTaskthread();
    sockaddr_un const address = serviceAddress();
    pid_t const other = ::fork();
    if (other == 0) {
        if (::setgid(65534) != 0 || ::setuid(65534) != 0) ::_exit(2);
        ::_exit(connects(address) ? 1 : 0);
    }
    int status = 0;
    ::waitpid(other, &status, 0);
    norvane_1::stopExecuteMinidumpTaskThread();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
}

}  // namespace
