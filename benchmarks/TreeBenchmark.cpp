// TreeBenchmark.cpp: a tree of virtual files built through the registered tables, and burned; who starts it measures.
//
//     tree-benchmark COUNT BYTES
#include "plugin/frame/HostServices.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/ProducedBurn.hpp"

#include "host/runtime/String.hpp"

#include <cstdio>
#include <cstdlib>

extern "C" void REALPluginMain(REALresolver resolver);

namespace {

using host::Ref, host::String, host::harness::member;

constexpr unsigned inFolder = 100;

Ref folderNamed(const std::string& name) {
    static auto* const make =
        member<REALobject(REALstring)>("DRFolderQRX", "virtualFolderWithName(name as string) as DRFolderQRX");
    return Ref::adopt(make(String(name).get()));
}

Ref fileNamed(const std::string& name, const Ref& bytes) {
    static auto* const make = member<REALobject(REALstring, REALmemoryBlock)>(
        "DRFileQRX", "virtualFileWithName(name as string, data as memoryblock) as DRFileQRX");
    return Ref::adopt(make(String(name).get(), bytes.get()));
}

void add(const Ref& folder, const Ref& child) {
    static auto* const call =
        member<void(REALobject, REALobject)>("DRFolderQRX", "addChild(child as DRFSObjectQRX)");
    call(folder.get(), child.get());
}

Ref treeOf(unsigned count, std::size_t size) {
    const Ref bytes = host::newMemoryBlock(static_cast<int64_t>(size));
    Ref root = folderNamed("BENCHMARK");
    for (unsigned done = 0; done < count; done += inFolder) {
        const test::Pool pool;
        const Ref folder = folderNamed("folder" + std::to_string(10000 + done / inFolder));
        add(root, folder);
        for (unsigned at = done; at < std::min(done + inFolder, count); ++at)
            add(folder, fileNamed("file" + std::to_string(1000000 + at), bytes));
    }
    return root;
}

} // namespace

int main(int count, char** words) {
    if (count != 3) {
        std::fprintf(stderr, "usage: tree-benchmark COUNT BYTES\n");
        return 2;
    }
    const test::Pool pool;
    test::companion::offerRegistry();
    REALPluginMain(host::resolver());
    const Ref root =
        treeOf(static_cast<unsigned>(std::atoi(words[1])), static_cast<std::size_t>(std::atoi(words[2])));
    const Ref track = Ref::adopt(member<REALobject(REALobject)>(
        "DRTrackQRX", "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX")(root.get()));
    const std::string end = test::burnAndWait(track);
    if (end == "DRStatusStateDone") return 0;
    std::fprintf(stderr, "tree-benchmark: %s\n", end.c_str());
    return 1;
}
