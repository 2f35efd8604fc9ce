#include "platform/SingleInstance.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <sstream>
#include <thread>
#include <vector>

#include "support/ScopedEnvironment.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

constexpr std::chrono::milliseconds kPatience{300};

/// A process of the test's own that runs until somebody ends it.
class Child {
  public:
    enum class Manner { obeys, ignoresRequests };

    explicit Child(Manner manner = Manner::obeys) {
        // An ignored signal stays ignored in the program that is started.
        const auto before = signal(SIGTERM, manner == Manner::obeys ? SIG_DFL : SIG_IGN);
        char name[] = "sleep";
        char seconds[] = "1000";
        char* const arguments[] = {name, seconds, nullptr};
        EXPECT_EQ(posix_spawnp(&id_, name, nullptr, nullptr, arguments, environ), 0);
        signal(SIGTERM, before);
    }
    ~Child() {
        if (ended_) return;
        kill(id_, SIGKILL);
        waitpid(id_, nullptr, 0);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    int id() const { return id_; }

    bool runs() {
        if (!ended_) ended_ = waitpid(id_, &status_, WNOHANG) == id_;
        return !ended_;
    }

    /// The signal that ended it; waits for the end.
    int endedBy() {
        if (!ended_) ended_ = waitpid(id_, &status_, 0) == id_;
        return WIFSIGNALED(status_) ? WTERMSIG(status_) : 0;
    }

    /// Ends it as a program that crashed, whose parent has not looked yet.
    void dieUnnoticed() const {
        kill(id_, SIGKILL);
        siginfo_t seen{};
        EXPECT_EQ(waitid(P_PID, static_cast<id_t>(id_), &seen, WEXITED | WNOWAIT), 0);
    }

  private:
    pid_t id_ = 0;
    int status_ = 0;
    bool ended_ = false;
};

/// The moment at which a process started, as the system counts it.
std::string startOf(int processId) {
    const std::string line = readFile("/proc/" + std::to_string(processId) + "/stat");
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string field;
    for (int i = 3; i <= 22; ++i) fields >> field;
    return field;
}

class SingleInstanceIn : public ::testing::Test {
  protected:
    void enter(const Child& child) { ASSERT_TRUE(instance_.enter(child.id())); }
    std::filesystem::path entryOf(int id) const { return registry_ / std::to_string(id); }
    bool isEntered(int id) const { return std::filesystem::exists(entryOf(id)); }

    TempFolder folder_;
    std::filesystem::path registry_ = folder_ / "runtime" / "copies";
    SingleInstance instance_{registry_, "sleep"};
};

TEST_F(SingleInstanceIn, enters_this_process_with_the_moment_of_its_start) {
    instance_.takeOver(kPatience);
    EXPECT_EQ(readFile(entryOf(getpid())), startOf(getpid()) + "\n");
    struct stat found {};
    ASSERT_EQ(stat(registry_.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0700u);
}

TEST_F(SingleInstanceIn, asks_an_older_copy_to_end) {
    Child older;
    enter(older);
    EXPECT_EQ(readFile(entryOf(older.id())), startOf(older.id()) + "\n");
    instance_.takeOver(kPatience);
    EXPECT_EQ(older.endedBy(), SIGTERM);
    EXPECT_FALSE(isEntered(older.id()));
    EXPECT_TRUE(isEntered(getpid()));
}

TEST_F(SingleInstanceIn, forces_an_older_copy_that_ignores_the_request) {
    Child older(Child::Manner::ignoresRequests);
    enter(older);
    instance_.takeOver(kPatience);
    EXPECT_EQ(older.endedBy(), SIGKILL);
    EXPECT_FALSE(isEntered(older.id()));
}

TEST_F(SingleInstanceIn, gives_an_older_copy_half_a_second_unless_told_otherwise) {
    Child older(Child::Manner::ignoresRequests);
    enter(older);
    const auto begun = std::chrono::steady_clock::now();
    instance_.takeOver();
    const auto taken = std::chrono::steady_clock::now() - begun;
    EXPECT_EQ(older.endedBy(), SIGKILL);
    EXPECT_GE(taken, std::chrono::milliseconds(500));
    EXPECT_LT(taken, std::chrono::seconds(2));
}

TEST_F(SingleInstanceIn, ends_every_older_copy) {
    Child one(Child::Manner::ignoresRequests);
    Child two;
    Child three(Child::Manner::ignoresRequests);
    for (const auto* each : {&one, &two, &three}) enter(*each);
    instance_.takeOver(kPatience);
    EXPECT_EQ(one.endedBy(), SIGKILL);
    EXPECT_EQ(two.endedBy(), SIGTERM);
    EXPECT_EQ(three.endedBy(), SIGKILL);
}

TEST_F(SingleInstanceIn, spares_this_process_when_it_takes_over_again) {
    instance_.takeOver(kPatience);
    SingleInstance(registry_).takeOver(kPatience);
    EXPECT_TRUE(isEntered(getpid()));
}

TEST_F(SingleInstanceIn, spares_a_process_that_was_given_the_id_of_a_copy) {
    Child later;
    writeFile(entryOf(later.id()), "1\n");
    Child unknown;
    writeFile(entryOf(unknown.id()), "");
    instance_.takeOver(kPatience);
    EXPECT_TRUE(later.runs());
    EXPECT_TRUE(unknown.runs());
    EXPECT_FALSE(isEntered(later.id()));
    EXPECT_FALSE(isEntered(unknown.id()));
}

TEST_F(SingleInstanceIn, spares_a_process_that_runs_another_program) {
    Child other;
    enter(other);
    SingleInstance(registry_, "sonavault").takeOver(kPatience);
    EXPECT_TRUE(other.runs());
    EXPECT_FALSE(isEntered(other.id()));
}

TEST_F(SingleInstanceIn, crosses_out_a_copy_that_has_ended) {
    Child zombie;
    enter(zombie);
    zombie.dieUnnoticed();
    EXPECT_FALSE(instance_.enter(zombie.id()));
    int gone = 0;
    {
        Child reaped;
        enter(reaped);
        gone = reaped.id();
    }
    instance_.takeOver(kPatience);
    EXPECT_FALSE(isEntered(zombie.id()));
    EXPECT_FALSE(isEntered(gone));
}

TEST_F(SingleInstanceIn, passes_over_what_is_no_entry) {
    Child bystander;
    const std::string id = std::to_string(bystander.id());
    const std::string start = startOf(bystander.id()) + "\n";
    for (const auto& name : {std::string("readme"), id + "x", "x" + id, "-" + id, id + ".tmp"})
        writeFile(registry_ / name, start);
    writeFile(registry_ / "0", start);
    writeFile(registry_ / "99999999999999999999", start);
    std::filesystem::create_directories(registry_ / "1234567" / "inside");
    instance_.takeOver(kPatience);
    EXPECT_TRUE(bystander.runs());
    EXPECT_TRUE(isEntered(getpid()));
    EXPECT_TRUE(std::filesystem::exists(registry_ / "readme"));
}

TEST_F(SingleInstanceIn, enters_no_process_that_is_not_there) {
    int gone = 0;
    {
        const Child child;
        gone = child.id();
    }
    const auto outcome = instance_.enter(gone);
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "no such process");
}

TEST_F(SingleInstanceIn, lets_the_launch_go_on_without_a_registry) {
    writeFile(folder_ / "file", "x");
    SingleInstance inFile(folder_ / "file" / "copies", "sleep");
    inFile.takeOver(kPatience);
    EXPECT_FALSE(inFile.enter(getpid()));
    SingleInstance("/proc/no/such/folder", "sleep").takeOver(kPatience);
}

TEST_F(SingleInstanceIn, trusts_no_registry_that_is_only_a_link) {
    Child older;
    enter(older);
    std::filesystem::create_directory_symlink(registry_, folder_ / "link");
    SingleInstance(folder_ / "link", "sleep").takeOver(kPatience);
    EXPECT_TRUE(older.runs());
}

TEST_F(SingleInstanceIn, waits_for_a_copy_that_is_just_taking_over_but_not_for_ever) {
    Child older;
    enter(older);
    const int turn = open((registry_ / ".turn").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(turn, LOCK_EX), 0);
    instance_.takeOver(kPatience);
    EXPECT_EQ(older.endedBy(), SIGTERM);
    EXPECT_TRUE(isEntered(getpid()));
    close(turn);
}

TEST_F(SingleInstanceIn, finds_a_copy_that_entered_during_the_wait) {
    instance_.takeOver(kPatience);
    const int turn = open((registry_ / ".turn").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(turn, LOCK_EX), 0);
    std::thread newcomer([this] { instance_.takeOver(std::chrono::seconds(1)); });
    Child older;
    EXPECT_TRUE(SingleInstance(registry_, "sleep").enter(older.id()));
    close(turn);
    EXPECT_EQ(older.endedBy(), SIGTERM);
    newcomer.join();
}

TEST(SingleInstance, knows_the_program_that_this_process_runs) {
    EXPECT_EQ(SingleInstance::ownProgram(),
              std::filesystem::read_symlink("/proc/self/exe").filename().string());
}

TEST(SingleInstance, keeps_its_registry_in_the_runtime_folder_of_the_person) {
    {
        const ScopedEnvironment runtime("XDG_RUNTIME_DIR", "/run/user/7");
        EXPECT_EQ(SingleInstance::defaultRegistry(), "/run/user/7/sonavault");
    }
    const ScopedEnvironment temporary("TMPDIR", "/var/tmp");
    const std::string own = "/var/tmp/sonavault-" + std::to_string(getuid());
    for (const std::optional<std::string>& unusable :
         {std::optional<std::string>(), std::optional<std::string>(""),
          std::optional<std::string>("relative")}) {
        const ScopedEnvironment runtime("XDG_RUNTIME_DIR", unusable);
        EXPECT_EQ(SingleInstance::defaultRegistry(), own);
    }
}

}  // namespace
}  // namespace sonavault::testing
