// Resource forks of files with a producer: in HFS+ only, asked for when something of the file is there.
#include "Discs.hpp"

#include <cstring>

using namespace engine;

namespace {

class TwoForks : public FileProducer {
  public:
    TwoForks(std::string data, std::string resource)
        : data_(std::move(data)), resource_(std::move(resource)) {}
    uint64_t size() override { return data_.size(); }
    size_t read(uint64_t offset, std::span<std::byte> buffer) override { return copy(data_, offset, buffer); }
    uint64_t resourceSize() override {
        ++asked;
        return resource_.size();
    }
    size_t readResource(uint64_t offset, std::span<std::byte> buffer) override {
        return copy(resource_, offset, buffer);
    }
    bool prepareAgain() override {
        ++again;
        return true;
    }

    int asked = 0, again = 0;

  private:
    // Never all at once.
    static size_t copy(const std::string& from, uint64_t offset, std::span<std::byte> buffer) {
        const size_t count = std::min<size_t>(buffer.size(), 3000);
        std::memcpy(buffer.data(), from.data() + offset, count);
        return count;
    }
    std::string data_, resource_;
};

class PlanForForks : public test::Discs {
  protected:
    static constexpr uint8_t both = filesystem::iso9660 | filesystem::hfsPlus;

    std::shared_ptr<TwoForks> add(const std::string& name, std::string data, std::string resource,
                                  uint8_t filesystems = filesystem::all) {
        auto made = std::make_shared<TwoForks>(std::move(data), std::move(resource));
        children.push_back(Content::produced(name, made));
        children.back().filesystems = filesystems;
        children.back().identity = children.size();
        return made;
    }
    void burnAll(uint8_t filesystems) {
        Layout what = discOf(Content::folder("Disc", children), filesystems);
        what.sessions[0].tracks[0].verification = Verification::ProduceAgain;
        EXPECT_DONE(burn(freshDrive(), what));
    }

    std::vector<Content> children;
};

TEST_F(PlanForForks, bothForksAreInHfsPlusAndTheDataInAll) {
    const std::string large = noise(1'500'000, 7), small = noise(3001, 8);
    const auto usual = add("both", small, large);
    const auto alone = add("only a fork", "", "fork");
    add("only data", "data", "");
    children.push_back(Content::file("z", "behind"));
    constexpr uint8_t filesystems = both | filesystem::joliet;
    burnAll(filesystems);
    extractAll(image(), filesystems, "Disc");
    const std::string dataOfAll = "both=" + small + " only a fork= only data=data z=behind ";
    for (const char* folder : {"rr", "joliet"})
        EXPECT_TRUE(shown(folder) == dataOfAll) << folder;
    EXPECT_TRUE(shown("hfsplus") == "both:rsrc=" + large + " both=" + small +
                                        " only a fork:rsrc=fork only a fork= only data=data z=behind ");
    EXPECT_EQ(usual->asked, 1);
    EXPECT_EQ(usual->again, 1) << "for both forks";
    EXPECT_EQ(alone->again, 1);
    // Another reader: its word for a resource fork is an attribute of type 4353.
    const std::string disc = bytesOf(image());
    size_t block = 0;
    while (disc.compare(block * 2048 + 1024, 2, "H+") != 0)
        ++block;
    const std::string from = " -f hfs -o " + std::to_string(block * 4) + " '" + image().string() + "' ";
    const std::string listed = run("fls" + from);
    const size_t end = listed.find(":\tboth\n"), begin = listed.rfind(' ', end) + 1;
    ASSERT_NE(end, listed.npos) << listed;
    EXPECT_TRUE(run("icat" + from + listed.substr(begin, end - begin) + "-4353") == large);
}

TEST_F(PlanForForks, nobodyIsAskedWithoutHfsPlus) {
    const auto elsewhere = add("elsewhere", "data", "fork", filesystem::iso9660);
    burnAll(filesystem::iso9660 | filesystem::joliet | filesystem::udf);
    EXPECT_EQ(elsewhere->asked, 0);
    burnAll(both);
    EXPECT_EQ(elsewhere->asked, 0) << "HFS+ doesn't show it";
    EXPECT_EQ(bytesOf(image()).find("fork"), std::string::npos);
}

TEST_F(PlanForForks, everyNameInHfsPlusHasTheFork) {
    const auto file = add("file", "data", "the fork", filesystem::iso9660);
    children.push_back({"link", HardLink{1}, {}});
    children.back().filesystems = filesystem::hfsPlus;
    children.push_back({"other", HardLink{1}, {}});
    children.back().attributes->mode = 0600;
    burnAll(both);
    EXPECT_EQ(file->asked, 1);
    EXPECT_EQ(file->again, 1);
    extractAll(image(), both, "Disc");
    EXPECT_EQ(shown("rr"), "file=data other=data ");
    EXPECT_EQ(shown("hfsplus"), "link:rsrc=the fork link=data other:rsrc=the fork other=data ");
    const std::string disc = bytesOf(image());
    EXPECT_EQ(disc.find("the fork"), disc.rfind("the fork")) << "once on the disc";
}

} // namespace
