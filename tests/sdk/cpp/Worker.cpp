// A plug-in with a thread: it maintains a file with the number of its rounds.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <ziptra/plugin.hpp>

static std::string temporaryFolder() {
    const char* const folder = std::getenv("TEMP");
    return folder != nullptr ? folder : "C:";
}

class Worker {
public:
    Worker() : name_(temporaryFolder() + "\\rounds.txt") {
        worker_.start([this](const ziptra::StopRequest& stop) {
            do {
                write();
            } while (!stop.wait(std::chrono::milliseconds(200)));
        });
    }

private:
    void write() {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name_.c_str(), "w"), std::fclose);
        if (file == nullptr) throw std::runtime_error("cannot write " + name_);
        std::fprintf(file.get(), "%d\n", ++rounds_);
    }

    std::string name_;
    int rounds_ = 0;
    ziptra::Worker worker_;
};
ZIPTRA_PLUGIN(Worker)
