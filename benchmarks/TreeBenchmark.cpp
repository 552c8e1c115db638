// TreeBenchmark.cpp: a tree of files built through the registered tables, and burned; who starts it measures.
//
//     tree-benchmark virtual COUNT BYTES      files whose bytes are in memory
//     tree-benchmark produced COUNT BYTES     files whose bytes come from events
#include "plugin/frame/HostServices.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/ProducedBurn.hpp"

#include "host/runtime/String.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

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

std::size_t producedSize = 0;

Ref producedFileNamed(const std::string& name) {
    using host::Arguments, host::Value;
    constexpr const char* className = "Produced";
    if (!host::findClass(className))
        host::defineClass(
            {className,
             "DRFileQRX",
             {test::handler("prepareFileForBurn() As Boolean",
                            [](REALobject, Arguments) -> Value { return true; }),
              test::handler("calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64",
                            [](REALobject, Arguments) -> Value { return uint64_t{producedSize}; }),
              test::handler(
                  "produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As "
                  "UInt64, blocksize As UInt32) As UInt32",
                  [](REALobject, Arguments arguments) -> Value {
                      std::memset(host::memoryOf(arguments[1].object()).data(), 'x',
                                  static_cast<std::size_t>(arguments[2].toInt64()));
                      return arguments[2];
                  })},
             {},
             {}});
    static auto* const construct =
        member<void(REALobject, REALstring)>("DRFileQRX", "Constructor(name as string)");
    Ref file = Ref::adopt(REALnewInstance(className));
    construct(file.get(), String(name).get());
    return file;
}

void add(const Ref& folder, const Ref& child) {
    static auto* const call =
        member<void(REALobject, REALobject)>("DRFolderQRX", "addChild(child as DRFSObjectQRX)");
    call(folder.get(), child.get());
}

Ref treeOf(bool isProduced, unsigned count, std::size_t size) {
    producedSize = size;
    const Ref bytes = host::newMemoryBlock(static_cast<int64_t>(size));
    Ref root = folderNamed("BENCHMARK");
    for (unsigned done = 0; done < count; done += inFolder) {
        const test::Pool pool;
        const Ref folder = folderNamed("folder" + std::to_string(10000 + done / inFolder));
        add(root, folder);
        for (unsigned at = done; at < std::min(done + inFolder, count); ++at)
            add(folder, isProduced ? producedFileNamed("file" + std::to_string(1000000 + at))
                                   : fileNamed("file" + std::to_string(1000000 + at), bytes));
    }
    return root;
}

} // namespace

int main(int count, char** words) {
    if (count != 4) {
        std::fprintf(stderr, "usage: tree-benchmark virtual|produced COUNT BYTES\n");
        return 2;
    }
    const test::Pool pool;
    test::companion::offerRegistry();
    REALPluginMain(host::resolver());
    const Ref root =
        treeOf(std::string_view(words[1]) == "produced", static_cast<unsigned>(std::atoi(words[2])),
               static_cast<std::size_t>(std::atoi(words[3])));
    const Ref track = Ref::adopt(member<REALobject(REALobject)>(
        "DRTrackQRX", "trackForRootFolder(folder as DRFolderQRX) as DRTrackQRX")(root.get()));
    const std::string end = test::burnAndWait(track);
    if (end == "DRStatusStateDone") return 0;
    std::fprintf(stderr, "tree-benchmark: %s\n", end.c_str());
    return 1;
}
