// MemoryBlock.cpp: the MemoryBlock class.
#include "host/runtime/MemoryBlock.hpp"

#include "host/runtime/Builtins.hpp"
#include "host/runtime/Exceptions.hpp"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

namespace host {
namespace {

struct BlockData {
    std::byte* bytes = nullptr;
    std::size_t size = 0;
    bool isOwn = true;
    bool hasEnded = false;
    bool isLittle = std::endian::native == std::endian::little;
};

BlockData& data(REALobject block) { return dataOf<BlockData>(block); }

bool allocate(BlockData& block, int64_t size) {
    if (size < 0) return false;
    auto* bytes =
        static_cast<std::byte*>(std::calloc(std::max<std::size_t>(static_cast<std::size_t>(size), 1), 1));
    if (!bytes) return false;
    if (block.isOwn) std::free(block.bytes);
    block.bytes = bytes;
    block.size = static_cast<std::size_t>(size);
    block.isOwn = true;
    return true;
}

// The address of `length` bytes at an offset; checked where the size is known.
std::byte* at(REALobject self, const Value& offset, int64_t length) {
    const auto& block = data(self);
    if (block.hasEnded)
        raise("NilObjectException",
              "this memory block showed an event's buffer, and the event has returned; copy what "
              "is needed later while it runs");
    const int64_t start = offset.toInt64();
    const bool fits = start >= 0 && length >= 0 &&
                      (!block.isOwn || (start <= static_cast<int64_t>(block.size) &&
                                        length <= static_cast<int64_t>(block.size) - start));
    if (!fits)
        raise("OutOfBoundsException", std::to_string(length) + " bytes at offset " + std::to_string(start) +
                                          " are out of bounds: the memory block has " +
                                          std::to_string(block.size) + " bytes");
    if (!block.bytes) raise("NilObjectException", "the memory block has no memory");
    return block.bytes + start;
}

template <class T>
void addNumber(std::vector<MemberSpec>& members, const char* name, const char* type) {
    const auto get = [](REALobject self, Arguments a) -> Value {
        std::byte raw[sizeof(T)];
        std::memcpy(raw, at(self, a[0], sizeof(T)), sizeof(T));
        if (data(self).isLittle != (std::endian::native == std::endian::little))
            std::reverse(raw, raw + sizeof(T));
        T number;
        std::memcpy(&number, raw, sizeof(T));
        return number;
    };
    const auto set = [](REALobject self, Arguments a) -> Value {
        T number;
        if constexpr (std::is_floating_point_v<T>)
            number = static_cast<T>(a[1].toDouble());
        else
            number = static_cast<T>(a[1].toUInt64());
        std::byte raw[sizeof(T)];
        std::memcpy(raw, &number, sizeof(T));
        if (data(self).isLittle != (std::endian::native == std::endian::little))
            std::reverse(raw, raw + sizeof(T));
        std::memcpy(at(self, a[0], sizeof(T)), raw, sizeof(T));
        return {};
    };
    members.push_back(property(std::string(name) + "(offset As Integer) As " + type, get, set));
}

Value textOf(REALobject self, const Value& offset, int64_t length) {
    const auto* bytes = at(self, offset, length);
    return String::adopt(newString({reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)},
                                   kREALEncodingUnknown));
}

Value partOf(REALobject self, int64_t offset, int64_t length) {
    const auto* bytes = at(self, offset, length);
    Ref part = newMemoryBlock(length);
    if (!part) raise("OutOfMemoryException", "there is no memory for " + std::to_string(length) + " bytes");
    if (length > 0) std::memcpy(memoryOf(part.get()).data(), bytes, static_cast<std::size_t>(length));
    return part;
}

void addNumbers(std::vector<MemberSpec>& m) {
    addNumber<int8_t>(m, "Int8Value", "Int8");
    addNumber<int16_t>(m, "Int16Value", "Int16");
    addNumber<int32_t>(m, "Int32Value", "Int32");
    addNumber<int64_t>(m, "Int64Value", "Int64");
    addNumber<uint8_t>(m, "UInt8Value", "UInt8");
    addNumber<uint16_t>(m, "UInt16Value", "UInt16");
    addNumber<uint32_t>(m, "UInt32Value", "UInt32");
    addNumber<uint64_t>(m, "UInt64Value", "UInt64");
    addNumber<float>(m, "SingleValue", "Single");
    addNumber<double>(m, "DoubleValue", "Double");
    addNumber<uint8_t>(m, "Byte", "UInt8");
    addNumber<int16_t>(m, "Short", "Int16");
    addNumber<int32_t>(m, "Long", "Int32");
    m.push_back(property(
        "BooleanValue(offset As Integer) As Boolean",
        [](REALobject self, Arguments a) -> Value { return *at(self, a[0], 1) != std::byte{0}; },
        [](REALobject self, Arguments a) -> Value {
            *at(self, a[0], 1) = std::byte{static_cast<unsigned char>(a[1].toBoolean())};
            return {};
        }));
}

void addTexts(std::vector<MemberSpec>& m) {
    m.push_back(property(
        "StringValue(offset As Integer, length As Integer) As String",
        [](REALobject self, Arguments a) { return textOf(self, a[0], a[1].toInt64()); },
        [](REALobject self, Arguments a) -> Value {
            const auto text = bytesOf(a[2].string());
            auto* bytes = at(self, a[0], a[1].toInt64());
            const auto count = std::min<std::size_t>(text.size(), static_cast<std::size_t>(a[1].toInt64()));
            if (count > 0) std::memcpy(bytes, text.data(), count); // what is too long is cut off
            return {};
        }));
    m.push_back(property(
        "CString(offset As Integer) As String",
        [](REALobject self, Arguments a) {
            const auto* bytes = at(self, a[0], 0);
            int64_t length = 0;
            const auto& block = data(self);
            const auto end = block.isOwn ? block.bytes + block.size : nullptr;
            while (bytes + length != end && bytes[length] != std::byte{0})
                ++length;
            return textOf(self, a[0], length);
        },
        [](REALobject self, Arguments a) -> Value {
            const auto text = bytesOf(a[1].string());
            auto* bytes = at(self, a[0], static_cast<int64_t>(text.size()) + 1);
            std::copy_n(reinterpret_cast<const std::byte*>(text.data()), text.size(), bytes);
            bytes[text.size()] = std::byte{0};
            return {};
        }));
    m.push_back(method("LeftB(length As Integer) As MemoryBlock",
                       [](REALobject self, Arguments a) { return partOf(self, 0, a[0].toInt64()); }));
    m.push_back(
        method("MidB(offset As Integer, length As Integer) As MemoryBlock",
               [](REALobject self, Arguments a) { return partOf(self, a[0].toInt64(), a[1].toInt64()); }));
    m.push_back(method("RightB(length As Integer) As MemoryBlock", [](REALobject self, Arguments a) {
        const auto length = a[0].toInt64();
        return partOf(self, static_cast<int64_t>(data(self).size) - length, length);
    }));
}

Class& blockClass() { // the host's own, so it is there for ever
    static Class& known = requireClass("MemoryBlock");
    return known;
}

} // namespace

Ref newMemoryBlock(int64_t bytes) {
    Ref block = Ref::adopt(newObject(blockClass()));
    if (!allocate(data(block.get()), bytes)) return {};
    return block;
}

Ref newPointerBlock(void* pointer) {
    Ref block = Ref::adopt(newObject(blockClass()));
    auto& held = data(block.get());
    held.bytes = static_cast<std::byte*>(pointer);
    held.isOwn = false;
    return block;
}

void endPointerBlock(REALobject block) {
    auto& held = data(block);
    if (held.isOwn) return;
    held.bytes = nullptr;
    held.hasEnded = true;
}

bool isMemoryBlock(REALobject object) { return isA(object, "MemoryBlock"); }
std::span<std::byte> memoryOf(REALobject block) { return {data(block).bytes, data(block).size}; }
bool hasKnownSize(REALobject block) { return data(block).isOwn; }

void defineMemoryBlockClass() {
    std::vector<MemberSpec> m;
    m.push_back(method("Constructor(bytes as Integer)", [](REALobject self, Arguments a) -> Value {
        const auto size = a[0].toInt64();
        if (size < 0)
            raise("InvalidArgumentException", "a memory block can't have " + std::to_string(size) + " bytes");
        if (!allocate(data(self), size))
            raise("OutOfMemoryException", "there is no memory for " + std::to_string(size) + " bytes");
        return {};
    }));
    m.push_back(property(
        "Size As Integer",
        [](REALobject self, Arguments) -> Value { return static_cast<int32_t>(data(self).size); },
        [](REALobject self, Arguments a) -> Value {
            if (!data(self).isOwn)
                raise("UnsupportedOperationException",
                      "a memory block that points at foreign memory can't be resized");
            const auto size = a[0].toInt64();
            BlockData larger;
            if (size < 0)
                raise("InvalidArgumentException",
                      "a memory block can't have " + std::to_string(size) + " bytes");
            if (!allocate(larger, size))
                raise("OutOfMemoryException", "there is no memory for " + std::to_string(size) + " bytes");
            if (data(self).bytes)
                std::memcpy(larger.bytes, data(self).bytes, std::min(larger.size, data(self).size));
            std::swap(larger.bytes, data(self).bytes);
            data(self).size = larger.size;
            std::free(larger.bytes);
            return {};
        }));
    m.push_back(property(
        "LittleEndian As Boolean", [](REALobject self, Arguments) -> Value { return data(self).isLittle; },
        [](REALobject self, Arguments a) -> Value {
            data(self).isLittle = a[0].toBoolean();
            return {};
        }));
    addNumbers(m);
    addTexts(m);
    BuiltinSpec builtin = builtinWith<BlockData>("MemoryBlock", std::move(m));
    builtin.destructor = [](REALobject self) {
        if (data(self).isOwn) std::free(data(self).bytes);
    };
    defineBuiltin(std::move(builtin));
}

} // namespace host
