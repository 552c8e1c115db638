// Burns trees, and has each file system of the disc extracted by a program that is not ours.
#pragma once

#include "Fixture.hpp"

#include <cstdio>
#include <string>
#include <utility>

namespace test {

class Discs : public EngineTest {
  protected:
    static engine::Layout discOf(engine::Content root, uint8_t filesystems) {
        engine::Layout what = layoutOf(std::move(root));
        std::get<engine::DataTrack>(what.sessions[0].tracks[0].content).filesystems = filesystems;
        return what;
    }
    /// Names in Joliet, UDF and HFS+.
    static engine::Content named(engine::Content item, std::string joliet, std::string udf = {},
                                 std::string hfsPlus = {}) {
        item.names = std::make_shared<const engine::FilesystemNames>(
            engine::FilesystemNames{std::move(joliet), std::move(udf), std::move(hfsPlus)});
        return item;
    }

    /// A drive with an empty medium in the place of the one before.
    std::shared_ptr<engine::VirtualDrive> freshDrive() {
        fs::remove_all(drivePath());
        return makeDrive();
    }

    std::string run(const std::string& command, int wanted = 0) const {
        std::FILE* const pipe =
            ::popen(("cd '" + base.string() + "' && { LC_ALL=C.UTF-8; export LC_ALL; " + command + "; } 2>&1")
                        .c_str(),
                    "r");
        std::string told;
        for (int byte; (byte = std::fgetc(pipe)) != EOF;)
            told += static_cast<char>(byte);
        EXPECT_EQ(WEXITSTATUS(::pclose(pipe)), wanted) << command << '\n' << told;
        return told;
    }

    /// Each into a folder of that name in `base`.
    void extractRockRidge(const fs::path& from) const {
        run("mkdir rr && bsdtar -xpf '" + from.string() + "' -C rr");
    }
    /// Where there is Joliet, 7zz shows its names.
    void extractJoliet(const fs::path& from) const { run("7zz x -y -tiso -ojoliet '" + from.string() + "'"); }
    void extractUdf(const fs::path& from) const { run("7zz x -y -tudf -oudf '" + from.string() + "'"); }
    /// 7zz warns that something stands in front. The volume is a folder.
    void extractHfsPlus(const fs::path& from, const std::string& volume) const {
        run("7zz x -y -thfs -ohfsx '" + from.string() + "' || test $? = 1; mv hfsx/'" + volume + "' hfsplus");
    }
    void extractAll(const fs::path& from, uint8_t filesystems, const std::string& volume) const {
        run("chmod -R u+rwx rr joliet udf hfsplus 2>/dev/null; rm -rf rr joliet udf hfsplus hfsx; mkdir "
            "joliet udf");
        extractRockRidge(from);
        if (filesystems & engine::filesystem::joliet) extractJoliet(from);
        if (filesystems & engine::filesystem::udf) extractUdf(from);
        if (filesystems & engine::filesystem::hfsPlus) extractHfsPlus(from, volume);
    }
    /// All paths below a folder of `base`, a file's bytes behind its own: "a/ a/b=bytes ".
    std::string shown(const std::string& folder) const {
        std::vector<std::string> all;
        for (const auto& entry : fs::recursive_directory_iterator(base / folder)) {
            std::string path = entry.path().lexically_relative(base / folder).string();
            if (entry.is_symlink())
                path += "->" + fs::read_symlink(entry.path()).string();
            else
                path += entry.is_directory() ? "/" : "=" + bytesOf(entry.path());
            all.push_back(std::move(path));
        }
        std::ranges::sort(all);
        std::string text;
        for (const std::string& path : all)
            text += path + ' ';
        return text;
    }
};

} // namespace test
