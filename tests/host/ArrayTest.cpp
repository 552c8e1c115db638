// ArrayTest.cpp: arrays of every element type.
#include "tests/host/Support.hpp"

namespace {

using namespace test;

class Arrays : public NothingLeft {
  protected:
    static Ref of(const char* element, std::vector<Value> values) {
        Ref array = newArray(typeNamed(element));
        for (const auto& value : values)
            arrayAppend(array.get(), value);
        return array;
    }
};

template <class T>
std::vector<T> packed(const Ref& array) {
    const T* elements = static_cast<T*>(arrayHandle(array.get())->elements);
    return {elements, elements + upperBound(array.get()) + 1};
}

TEST_F(Arrays, ElementsArePackedBehindTheThirdWord) {
    EXPECT_EQ(packed<int32_t>(of("Integer", {1, -2, 3})), (std::vector<int32_t>{1, -2, 3}));
    EXPECT_EQ(packed<int64_t>(of("Int64", {1, int64_t{1} << 40})),
              (std::vector<int64_t>{1, int64_t{1} << 40}));
    EXPECT_EQ(packed<uint8_t>(of("Boolean", {true, false, true})), (std::vector<uint8_t>{1, 0, 1}));
    EXPECT_EQ(packed<uint16_t>(of("UInt16", {1, 65535})), (std::vector<uint16_t>{1, 65535}));
    EXPECT_EQ(packed<float>(of("Single", {0.5, 2})), (std::vector<float>{0.5f, 2}));
    EXPECT_EQ(packed<double>(of("Double", {0.1})), (std::vector<double>{0.1}));
    const Ref texts = of("String", {"a", "b"});
    EXPECT_EQ(bytesOf(packed<REALstring>(texts)[1]), "b");
    const Value object = make("Dictionary");
    EXPECT_EQ(packed<REALobject>(of("Dictionary", {object}))[0], object.object());
    EXPECT_EQ(classOf(packed<REALobject>(of("Variant", {7}))[0]).name(), "Variant");
}

TEST_F(Arrays, GrowShrinkAndKeepTheirOrder) {
    const Ref array = of("Integer", {});
    EXPECT_EQ(upperBound(array.get()), -1);
    for (int i = 0; i < 1000; ++i)
        arrayAppend(array.get(), i);
    arrayInsert(array.get(), 0, -1);
    arrayInsert(array.get(), 1001, 1000);
    EXPECT_EQ(upperBound(array.get()), 1001);
    for (int i = 0; i <= 1001; ++i)
        ASSERT_EQ(arrayGet(array.get(), i).toInt32(), i - 1);
    arrayRemove(array.get(), 1);
    EXPECT_EQ(arrayGet(array.get(), 1).toInt32(), 1);
    arrayResize(array.get(), 2);
    arrayResize(array.get(), 4);
    EXPECT_EQ(packed<int32_t>(array), (std::vector<int32_t>{-1, 1, 2, 0, 0}));
}

TEST_F(Arrays, RefuseBadIndicesAndValues) {
    const Ref array = of("Integer", {1, 2, 3});
    const std::string start = "OutOfBoundsException: index ";
    EXPECT_EQ(raisedBy([&] { arrayGet(array.get(), 3); }),
              start + "3 is out of bounds: the array's last index is 2");
    EXPECT_EQ(raisedBy([&] { arraySet(array.get(), -1, 0); }),
              start + "-1 is out of bounds: the array's last index is 2");
    EXPECT_EQ(raisedBy([&] { arrayInsert(array.get(), 5, 0); }),
              start + "5 is out of bounds: the array's last index is 2");
    EXPECT_EQ(raisedBy([&] { arrayRemove(of("Integer", {}).get(), 0); }),
              start + "0 is out of bounds: the array is empty");
    EXPECT_EQ(raisedBy([&] { arrayAppend(array.get(), "x"); }),
              "TypeMismatchException: an element of the array must be Int32, not String");
    EXPECT_EQ(raisedBy([&] { arrayAppend(of("Date", {}).get(), make("Dictionary")); }),
              "TypeMismatchException: an element of the array must be Date, not Dictionary");
    EXPECT_EQ(raisedBy([&] { arrayResize(array.get(), -2); }),
              "OutOfBoundsException: an array's upper bound can't be -2");
    EXPECT_EQ(upperBound(array.get()), 2);
}

TEST_F(Arrays, KeepTheirElementsAliveAndLetThemGo) {
    const Value object = make("Dictionary");
    {
        const Ref array = of("Object", {object, object, Value()});
        EXPECT_EQ(harness::references(object.object()), 3u);
        arraySet(array.get(), 0, Value());
        EXPECT_EQ(harness::references(object.object()), 2u);
    }
    EXPECT_EQ(harness::references(object.object()), 1u);
}

TEST_F(Arrays, HaveMembersForPrograms) {
    const Value array = of("String", {"a"});
    ask(array, "Append", {"c"});
    ask(array, "Insert", {1, "b"});
    EXPECT_EQ(ask(array, "Count").toInt32(), 3);
    EXPECT_EQ(ask(array, "LastIndex").toInt32(), 2);
    EXPECT_EQ(ask(array, "IndexOf", {"C"}).toInt32(), 2);
    EXPECT_EQ(ask(array, "IndexOf", {"a", 1}).toInt32(), -1);
    EXPECT_EQ(ask(array, "Pop").toText(), "c");
    ask(array, "Remove", {0});
    EXPECT_EQ(ask(array, "Ubound").toInt32(), 0);
    ask(array, "RemoveAll");
    EXPECT_EQ(ask(array, "Ubound").toInt32(), -1);
}

TEST_F(Arrays, OfASubclassServeWhereOnesOfTheSuperclassAreDue) {
    const Value io = newArray(typeNamed("IOException"));
    EXPECT_EQ(fit(io, typeNamed("IOException()")), 0);
    EXPECT_GT(fit(io, typeNamed("RuntimeException()")), 0);
    EXPECT_LT(fit(newArray(typeNamed("RuntimeException")), typeNamed("IOException()")), 0);
    EXPECT_LT(fit(io, typeNamed("Integer()")), 0);
    EXPECT_LT(fit(io, typeNamed("IOException")), 0);
}

} // namespace
