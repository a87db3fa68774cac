#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

/// The path of a file that the build has made.
tPath built(const tPath& file) { return ownExecutable().parent_path() / file; }

/// Removes the folder as well, unless other software of the maker has something there.
void removeStatusFile() {
    std::error_code ignored;
    std::filesystem::permissions(tStatusFile::path(), std::filesystem::perms::all, ignored);
    std::filesystem::remove_all(tStatusFile::path(), ignored);
    std::filesystem::remove_all(tStatusFile::temporaryPath(), ignored);
    std::filesystem::remove(makerFolder(), ignored);
}

std::string key(const char* name, const std::string& value) {
    return value.empty() ? std::string() : std::string(name) + "=" + value + "\r\n";
}

}  // namespace

tStage::tStage() : callLog_(L"TEST_PLUGIN_LOG", (root() / L"calls").native()) {
    std::filesystem::create_directories(executable().parent_path());
    std::filesystem::create_directories(libraries());
    std::filesystem::copy_file(built(executable().filename()), executable());
    std::filesystem::copy_file(built(L"zusysapi.dll"), executable().parent_path() / L"zusysapi.dll");
    removeStatusFile();
    std::filesystem::create_directories(makerFolder());
    share(root() / L"shared");
}

tStage::~tStage() {
    process_.reset();
    removeStatusFile();
    registry::removeKey();
}

void tStage::share(const tPath& directory) {
    shared_ = directory;
    std::filesystem::create_directories(descriptions());
    registry::setSharedDirectory(directory.native());
}

tPath tStage::describe(const std::wstring& file, std::string_view bytes) const {
    writeFile(descriptions() / file, bytes);
    return descriptions() / file;
}

tPath tStage::addLibrary(const tPath& target, const wchar_t* library) {
    std::filesystem::copy_file(built(tPath(L"test-plugins") / library), target);
    return target;
}

void tStage::addPlugin(const std::string& name, const tPlugin& plugin) const {
    const tPath library = addLibrary(libraries() / wide(name + ".dll"), plugin.library);
    describe(wide(name + ".ini"), "[Service]\r\n" + key("Name", name) + key("Dependencies", plugin.dependencies) +
                                      key("Path", utf8Path(library)) + key("Requires", plugin.requires_) +
                                      key("Initialize", plugin.initialize) + key("Stop", plugin.stop) +
                                      key("Cleanup", plugin.cleanup));
}

void tStage::scriptSystemCalls() const {
    rebindImport(executable(), "ADVAPI32.dll", "scripted.dll");
    addLibrary(besideExecutable(L"scripted.dll"), L"scripted.dll");
}

tGate tStage::holdStatusWrite(int count) const { return tGate(besideExecutable(L"status." + std::to_wstring(count))); }
tGate tStage::holdPause(int count) const { return tGate(besideExecutable(L"pause." + std::to_wstring(count))); }

tProcess& tStage::start() { return process_.emplace(executable(), L"", creationFlags_); }

tStatusFile tStage::startPlugins() {
    tStatusWrites writes;
    start();
    writes.waitFor(3);  // constructed, prepared, started
    return tStatusFile::read();
}

tStatusFile tStage::stop() {
    process().interrupt();
    process().exitCode();
    return tStatusFile::read();
}

tStatusFile tStage::runThrough() {
    startPlugins();
    return stop();
}

void tStage::interruptForSure() {
    const std::size_t before = readFile(besideExecutable(L"threads.ended")).size();
    process().interrupt();
    waitFor("the end of the console's thread",
            [&] { return readFile(besideExecutable(L"threads.ended")).size() > before; });
}

std::string tStage::calls() const {
    std::string lines = readFile(root() / L"calls");
    std::erase(lines, '\r');
    return lines;
}

}  // namespace endtoend
