// The contents of an image from their sources: two threads read small files, and what comes out is in order.
#include "SourceReader.hpp"
#include "Failure.hpp"
#include "Fixture.hpp"
#include "NoThreads.hpp"

#include <condition_variable>
#include <cstdarg>
#include <cstring>
#include <functional>
#include <mutex>
#include <set>
#include <sys/stat.h>
#include <sys/syscall.h>

using namespace engine;

namespace {

constexpr size_t pageBytes = 2048;

// Told of every name that is opened in a folder, before that and after it.
std::function<void(const std::string& name, bool isOver)> whenOpened;

// Two names are opened at the same time; the second waits until nothing came of the first.
class Meeting {
  public:
    Meeting(std::string first, std::string second) : first_(std::move(first)), second_(std::move(second)) {
        whenOpened = [this](const std::string& name, bool isOver) { meet(name, isOver); };
    }
    ~Meeting() { whenOpened = nullptr; }
    Meeting(const Meeting&) = delete;
    Meeting& operator=(const Meeting&) = delete;

  private:
    void meet(const std::string& name, bool isOver) {
        if (name != first_ && name != second_) return;
        std::unique_lock lock(mutex_);
        (isOver ? over_ : begun_).insert(name);
        changed_.notify_all();
        if (isOver) return;
        const auto isMet = [&] { return name == first_ ? begun_.contains(second_) : over_.contains(first_); };
        EXPECT_TRUE(changed_.wait_for(lock, std::chrono::seconds(20), isMet)) << name << " is alone";
    }

    const std::string first_, second_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::set<std::string> begun_, over_;
};

// Gives one letter, and notes where it was asked.
class Letter : public FileProducer {
  public:
    Letter(char letter, uint64_t size, std::string& calls) : letter_(letter), size_(size), calls_(calls) {}
    uint64_t size() override { return size_; }
    size_t read(uint64_t offset, std::span<std::byte> buffer) override {
        if (offset == 0) calls_ += letter_;
        std::fill(buffer.begin(), buffer.end(), static_cast<std::byte>(letter_));
        return buffer.size();
    }

  private:
    char letter_;
    uint64_t size_;
    std::string& calls_;
};

class SourceReaderTest : public EngineTest {
  protected:
    // As the walk of a folder would.
    void addFolder(const std::string& name) {
        fs::create_directories(source / name);
        list.folders.push_back({(source / name).string(), {}});
        names.push_back(name);
    }
    void addFile(const std::string& name, size_t size) {
        const std::string bytes = noise(size, list.files.size() + 1);
        const fs::path path = write(names.back() + '/' + name, bytes);
        SourceFile file;
        file.folder = static_cast<uint32_t>(list.folders.size() - 1);
        file.fingerprint = fingerprintOf(path);
        paths.push_back(path);
        add(file, name, bytes);
    }
    void addData(const std::string& bytes) {
        SourceFile file;
        file.data = kept.emplace_back(std::make_unique<std::string>(bytes))->data();
        file.fingerprint.size = bytes.size();
        add(file, "data", bytes);
    }
    void addProduced(char letter, size_t size) {
        producers.push_back(std::make_unique<Letter>(letter, size, calls));
        SourceFile file;
        file.producer = producers.back().get();
        file.fingerprint.size = size;
        add(file, std::string(1, letter), std::string(size, letter));
    }
    // When nothing more is put into the folders.
    void plan() {
        for (SourceFolder& folder : list.folders)
            folder.fingerprint = fingerprintOf(folder.path);
    }
    std::string all(size_t bufferBytes) const {
        SourceReader reader(list);
        std::vector<std::byte> buffer(bufferBytes);
        std::string bytes;
        while (const size_t count = reader.read(buffer)) {
            bytes.append(reinterpret_cast<const char*>(buffer.data()), count);
            std::fill(buffer.begin(), buffer.end(), std::byte{0xEE}); // what isn't written shows
        }
        reader.checkFolders();
        return bytes;
    }
    std::string problem(size_t bufferBytes = 1u << 20) const {
        try {
            all(bufferBytes);
        } catch (const Failure& failure) {
            return failure.error().message;
        }
        return "";
    }
    static std::string changed(const fs::path& path, const std::string& how) {
        return "The file \"" + path.string() + "\" " + how +
               " while it was burned: burn it again when nothing writes to it.";
    }

    SourceList list;
    std::vector<fs::path> paths;
    std::vector<std::string> names;
    std::vector<std::unique_ptr<std::string>> kept;
    std::vector<std::unique_ptr<Letter>> producers;
    std::string expected, calls;

  private:
    static Fingerprint fingerprintOf(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return Fingerprint::of(status);
    }
    void add(SourceFile file, const std::string& name, const std::string& bytes) {
        file.nameAt = static_cast<uint32_t>(list.names.size());
        list.names += name + '\0';
        list.files.push_back(file);
        expected += bytes;
        expected.append((pageBytes - bytes.size() % pageBytes) % pageBytes, '\0');
    }
};

TEST_F(SourceReaderTest, smallFilesComeInOrderWhateverTheBuffer) {
    for (int folder = 0; folder < 12; ++folder) {
        addFolder("folder" + std::to_string(folder));
        for (size_t file = 0; file < 40; ++file)
            addFile("f" + std::to_string(file),
                    1 + (file * 7919 + static_cast<size_t>(folder) * 104729) % 9000);
    }
    plan();
    for (const size_t blocks : {1u, 2u, 7u, 33u, 512u, 5000u})
        EXPECT_TRUE(all(blocks * pageBytes) == expected) << blocks;
}

TEST_F(SourceReaderTest, largeOnesMemoryAndProducersStandBetween) {
    addFolder("a");
    const auto some = [&](size_t count, const std::string& name) {
        for (size_t file = 0; file < count; ++file)
            addFile(name + std::to_string(file), 100 + file * 37);
    };
    some(50, "a");
    addProduced('x', 5000);
    some(9, "b");
    addFile("large", 700'000);
    some(7, "c");
    for (int each = 0; each < 30; ++each)
        addData(noise(static_cast<size_t>(each) * 333 + 1, 77));
    addProduced('y', 1);
    addProduced('z', 2048);
    some(60, "d");
    plan();
    for (const size_t blocks : {3u, 100u, 512u, 3000u}) {
        calls.clear();
        EXPECT_TRUE(all(blocks * pageBytes) == expected) << blocks;
        EXPECT_EQ(calls, "xyz") << blocks;
    }
}

TEST_F(SourceReaderTest, whatIsWrongIsNamedInEitherHalf) {
    addFolder("a");
    for (size_t file = 0; file < 100; ++file)
        addFile("f" + std::to_string(file), 3000);
    plan();
    ASSERT_EQ(problem(), "");
    for (const size_t wrong : {0u, 10u, 49u, 50u, 90u, 99u}) {
        const std::string before = bytesOf(paths[wrong]);
        fs::resize_file(paths[wrong], 2999);
        EXPECT_EQ(problem(), changed(paths[wrong], "got shorter"));
        fs::resize_file(paths[wrong], 3001);
        EXPECT_EQ(problem(), changed(paths[wrong], "got longer"));
        fs::resize_file(paths[wrong], 3000);
        const timespec times[2] = {{1, 0}, {1, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, paths[wrong].c_str(), times, 0), 0);
        EXPECT_EQ(problem(), changed(paths[wrong], "changed"));
        list.files[wrong].fingerprint.modified = 1'000'000'000;
        EXPECT_EQ(problem(), "");
    }
}

TEST_F(SourceReaderTest, theFirstThatIsWrongIsNamed) {
    addFolder("a");
    for (size_t file = 0; file < 100; ++file)
        addFile("f" + std::to_string(file), 3000);
    plan();
    fs::remove(paths[95]);
    EXPECT_EQ(problem(), changed(paths[95], "went away"));
    fs::remove(paths[60]);
    EXPECT_EQ(problem(), changed(paths[60], "went away"));
    fs::remove(paths[20]);
    EXPECT_EQ(problem(), changed(paths[20], "went away"));
    EXPECT_EQ(problem(3 * pageBytes), changed(paths[20], "went away")) << "by one thread";
}

// Two parts of thirteen files, on two threads. Who fails first has nearly always told so before the other fails.
TEST_F(SourceReaderTest, theFirstThatIsWrongIsNamedWhicheverFailsFirst) {
    addFolder("a");
    for (size_t file = 0; file < 26; ++file)
        addFile("f" + std::to_string(file), 3000);
    plan();
    fs::remove(paths[3]);
    fs::remove(paths[20]);
    for (int round = 0; round < 50; ++round) {
        for (const auto& [first, second] : {std::pair("f20", "f3"), std::pair("f3", "f20")}) {
            const Meeting meeting(first, second);
            ASSERT_EQ(problem(), changed(paths[3], "went away")) << first << " failed first";
        }
    }
}

TEST_F(SourceReaderTest, oneThreadDoesItAllWhenNoOtherIsToBeHad) {
    addFolder("a");
    for (size_t file = 0; file < 100; ++file)
        addFile("f" + std::to_string(file), 3000);
    plan();
    const NoThreads none;
    EXPECT_TRUE(all(1u << 20) == expected);
    fs::remove(paths[60]);
    fs::remove(paths[20]);
    EXPECT_EQ(problem(), changed(paths[20], "went away"));
}

TEST_F(SourceReaderTest, aFolderThatBecameAnotherOneIsNamed) {
    for (const char* name : {"a", "b", "c"}) {
        addFolder(name);
        for (size_t file = 0; file < 30; ++file)
            addFile("f" + std::to_string(file), 3000);
    }
    plan();
    fs::rename(source / "c", source / "old");
    fs::copy(source / "old", source / "c");
    EXPECT_EQ(problem(),
              "The folder \"" + (source / "c").string() + "\" became another one while it was burned.");
}

} // namespace

// Stands in for the C library's.
extern "C" int openat(int folder, const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const auto mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : mode_t{0};
    va_end(more);
    if (whenOpened) whenOpened(path, false);
    const auto file = static_cast<int>(::syscall(SYS_openat, folder, path, flags | O_LARGEFILE, mode));
    const int problem = errno;
    if (whenOpened) whenOpened(path, true);
    errno = problem;
    return file;
}
