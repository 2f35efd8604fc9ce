#pragma once

#include <sys/resource.h>

#include <cstdio>
#include <vector>

namespace sonavault::testing {

/// As few descriptors as a process can have, for the length of a test.
class ScarceDescriptors {
  public:
    ScarceDescriptors() {
        getrlimit(RLIMIT_NOFILE, &before_);
        rlimit few = before_;
        few.rlim_cur = 256;
        setrlimit(RLIMIT_NOFILE, &few);
        while (std::FILE* file = std::fopen("/dev/null", "r")) files_.push_back(file);
    }
    ~ScarceDescriptors() {
        while (!files_.empty()) giveOneBack();
        setrlimit(RLIMIT_NOFILE, &before_);
    }
    ScarceDescriptors(const ScarceDescriptors&) = delete;
    ScarceDescriptors& operator=(const ScarceDescriptors&) = delete;

    void giveOneBack() {
        std::fclose(files_.back());
        files_.pop_back();
    }

  private:
    rlimit before_{};
    std::vector<std::FILE*> files_;
};

}  // namespace sonavault::testing
