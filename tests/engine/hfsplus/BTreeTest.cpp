// B-trees of any depth: leaves in order, an index that leads to each record, and maps of the nodes.
#include "hfsplus/BTree.hpp"
#include "Catalog.hpp"
#include "hfsplus/Fields.hpp"

#include <gtest/gtest.h>

#include <bit>

namespace {

using namespace test;
using engine::hfsplus::BTree;
using engine::hfsplus::Cursor;
using engine::hfsplus::Fields;

// Keys are numbers that grow, of different lengths; the data is the key's number once more.
class Numbers final : public engine::hfsplus::Records {
  public:
    explicit Numbers(uint32_t count) : count_(count) {}
    uint32_t groups() const override { return (count_ + 6) / 7; }
    uint32_t recordsIn(uint32_t group) const override { return std::min<uint32_t>(7, count_ - 7 * group); }
    size_t keyBytes(Cursor at) const override { return 6 + 2 * (of(at) % 9); }
    size_t dataBytes(Cursor at) const override { return 4 + 2 * (of(at) % 5); }
    void put(Cursor at, std::span<std::byte> key, std::span<std::byte> data) const override {
        Fields(key).u16(static_cast<uint32_t>(key.size()) - 2).u32(of(at));
        if (!data.empty()) Fields(data).u32(of(at));
    }

  private:
    static uint32_t of(Cursor at) { return 7 * at.group + at.index; }
    uint32_t count_;
};

std::string fileOf(const BTree& tree) {
    std::string bytes(static_cast<size_t>(tree.bytes()), '\xEE');
    for (uint32_t node = 0; node < tree.nodes(); ++node)
        tree.node(node, std::as_writable_bytes(std::span(bytes))
                            .subspan(size_t{node} * tree.nodeBytes(), tree.nodeBytes()));
    return bytes;
}

// As the 80 bytes of a volume header would tell of a file at the start of the medium.
std::string forkOf(const std::string& bytes) {
    std::string fork(80, '\0');
    Fields(std::as_writable_bytes(std::span(fork))).u64(bytes.size());
    return fork;
}

uint32_t keyOf(std::string_view record) { return static_cast<uint32_t>(number(record, 2, 4)); }

// From the root down; counts the levels.
uint32_t find(const Tree& tree, uint32_t key, uint32_t& levels) {
    uint64_t at = tree.header(2, 4);
    for (levels = 1;; ++levels) {
        const auto node = tree.node(at);
        size_t last = 0;
        while (last + 1 < Tree::recordCount(node) && keyOf(tree.record(node, last + 1)) <= key)
            ++last;
        const auto record = tree.record(node, last);
        const auto data = static_cast<size_t>(2 + number(record, 0, 2));
        if (number(node, 8, 1) == 0xFF) {
            EXPECT_EQ(number(node, 9, 1), 1u);
            return keyOf(record) == key ? static_cast<uint32_t>(number(record, data, 4)) : UINT32_MAX;
        }
        EXPECT_EQ(number(node, 8, 1), 0u) << "an index node";
        EXPECT_EQ(record.size(), data + 4) << "a key and a node";
        at = number(record, data, 4);
    }
}

class HfsBTrees : public testing::TestWithParam<std::pair<uint32_t, uint32_t>> {};

TEST_P(HfsBTrees, LeadToEveryRecord) {
    const auto [count, nodeBytes] = GetParam();
    const Numbers numbers(count);
    const BTree made(numbers, {nodeBytes, 22, true});
    const std::string bytes = fileOf(made), fork = forkOf(bytes);
    const Tree tree(bytes, fork);
    EXPECT_EQ(tree.header(18, 2), nodeBytes);
    EXPECT_EQ(tree.header(22, 4), made.nodes());
    EXPECT_EQ(tree.header(26, 4), 0u) << "free nodes";
    EXPECT_EQ(tree.header(38, 4), 6u) << "big keys, of different lengths also in the index";
    const auto leaves = leavesOf(tree);
    ASSERT_EQ(leaves.size(), count);
    for (uint32_t i = 0; i < count; ++i) {
        ASSERT_EQ(keyOf(leaves[i]), i);
        if (count > 5000 && i % 37 != 0) continue; // enough of them
        uint32_t levels = 0;
        ASSERT_EQ(find(tree, i, levels), i);
        ASSERT_EQ(levels, tree.header(0, 2)) << "the depth";
    }
}

// No node could have held its successor's first record: nothing is wasted.
TEST_P(HfsBTrees, AreFull) {
    const auto [count, nodeBytes] = GetParam();
    const Numbers numbers(count);
    const BTree made(numbers, {nodeBytes, 22, true});
    const std::string bytes = fileOf(made), fork = forkOf(bytes);
    const Tree tree(bytes, fork);
    for (uint32_t at = 1; at < made.nodes(); ++at) {
        const auto node = tree.node(at);
        const uint64_t next = number(node, 0, 4);
        if (next == 0 || number(node, 8, 1) == 2) continue; // the last one of its level, or a map
        const uint64_t used = number(node, nodeBytes - 2 * (Tree::recordCount(node) + 1), 2);
        const size_t record = tree.record(tree.node(next), 0).size();
        EXPECT_GT(used + record + 2 * (Tree::recordCount(node) + 2), nodeBytes) << at;
    }
}

TEST_P(HfsBTrees, TheMapCountsEveryNode) {
    const auto [count, nodeBytes] = GetParam();
    const Numbers numbers(count);
    const BTree made(numbers, {nodeBytes, 22, true});
    const std::string bytes = fileOf(made), fork = forkOf(bytes);
    const Tree tree(bytes, fork);
    std::string map;
    uint64_t before = 0;
    for (uint64_t at = 0;;) {
        const auto node = tree.node(at);
        EXPECT_EQ(number(node, 4, 4), before);
        EXPECT_EQ(number(node, 8, 2), at == 0 ? 0x0100u : 0x0200u);
        const auto record = tree.record(node, at == 0 ? 2 : 0);
        EXPECT_EQ(record.size(), nodeBytes - (at == 0 ? 256 : 20));
        map += record;
        before = at;
        at = number(node, 0, 4);
        if (at == 0) break;
    }
    ASSERT_GE(map.size() * 8, made.nodes());
    uint64_t used = 0;
    for (const char byte : map)
        used += static_cast<uint64_t>(std::popcount(static_cast<uint8_t>(byte)));
    EXPECT_EQ(used, made.nodes());
    EXPECT_EQ(static_cast<uint8_t>(map[(made.nodes() - 1) / 8]),
              static_cast<uint8_t>(0xFF << (7 - (made.nodes() - 1) % 8)));
}

INSTANTIATE_TEST_SUITE_P(Sizes, HfsBTrees,
                         testing::Values(std::pair(1u, 512u), std::pair(7u, 512u), std::pair(15u, 512u),
                                         std::pair(16u, 512u), std::pair(100u, 512u), std::pair(1000u, 512u),
                                         std::pair(5000u, 512u), std::pair(30'000u, 512u),
                                         std::pair(60'000u, 512u), std::pair(30'000u, 4096u)));

} // namespace
