// FSObjectTest.cpp: names, properties and masks of files and folders, through the declared members.
#include "host/runtime/Dictionary.hpp"
#include "tests/plugin/FSObjects.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include <functional>

namespace {

using namespace test;

class FSObject : public FSObjectTest {
  protected:
    using Property = REALvariant(REALobject, REALstring, REALstring, REALboolean);

    void setProperty(const Ref& object, const Value& value, const std::string& key,
                     const std::string& filesystem) {
        call<void>("DRFSObjectQRX", "setProperty(Value as variant, key as string, filesystem as string)",
                   object.get(), variant(value).get(), String(key).get(), String(filesystem).get());
    }
    Value property(const Ref& object, const std::string& key, const std::string& filesystem, bool merge) {
        return valueOf(Ref::adopt(call<REALvariant>("DRFSObjectQRX",
                                                    "propertyForKey(key as string, filesystem as string, "
                                                    "mergeWithOtherFilesystems as boolean) as variant",
                                                    object.get(), String(key).get(), String(filesystem).get(),
                                                    REALboolean{merge})));
    }
    Ref properties(const Ref& object, const std::string& filesystem, bool merge) {
        return Ref::adopt(call<REALdictionary>("DRFSObjectQRX",
                                               "propertiesForFilesystem(filesystem as string, "
                                               "mergeWithOtherFilesystems as boolean) as dictionary",
                                               object.get(), String(filesystem).get(), REALboolean{merge}));
    }
    int mask(const Ref& object, const char* declaration) {
        return call<int32_t>("DRFSObjectQRX", declaration, object.get());
    }
    void setMask(const Ref& object, int mask) {
        harness::setterOf<void(REALobject, int32_t)>("DRFSObjectQRX",
                                                     "explicitFilesystemMask as integer")(object.get(), mask);
    }
};

TEST_F(FSObject, TheSetterTakesTheFileSystemFirstAndThePlatformLast) {
    const Ref file = virtualFile("base.txt");
    setSpecificName(file, "DRJoliet", "for Joliet.txt");
    EXPECT_EQ(specificName(file, "DRJoliet"), "for Joliet.txt");
    EXPECT_EQ(specificName(file, "DRUDF"), "base.txt");
    EXPECT_EQ(specificName(file, "DRISO9660LevelOne"), "BASE.TXT");
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(FSObject, TheMessageHasTheNameFirst) {
    Ref file = make("DRFileQRX");
    Recorder recorder;
    frame::slot(file.get()) = recorder.object();
    setSpecificName(file, "the file system", "the name");
    EXPECT_EQ(recorder.first(), "the name");
    EXPECT_EQ(recorder.second(), "the file system");
    frame::slot(file.get()) = nullptr;
}

TEST_F(FSObject, MangledNamesTellSiblingsApart) {
    const Ref folder = virtualFolder("folder"), one = virtualFile("a long name 1.txt"),
              two = virtualFile("a long name 2.txt");
    addChild(folder, one);
    addChild(folder, two);
    EXPECT_EQ(mangledName(one, "DRISO9660LevelOne"), "ALONGNAM.TXT");
    EXPECT_EQ(mangledName(two, "DRISO9660LevelOne"), "ALON_001.TXT");
    EXPECT_EQ(mangledName(two, "DRJoliet"), "a long name 2.txt");
}

TEST_F(FSObject, NamesOfAllFileSystemsAreADictionary) {
    const Ref file = virtualFile("Größe.txt");
    setMask(file, 1 | 2);
    const Ref names =
        Ref::adopt(call<REALdictionary>("DRFSObjectQRX", "specificNames as dictionary", file.get()));
    EXPECT_EQ(host::dictionaryCount(names.get()), 3);
    EXPECT_EQ(host::dictionaryGet(names.get(), Value("DRJoliet")).toText(), "Größe.txt");
    EXPECT_EQ(host::dictionaryGet(names.get(), Value("DRISO9660LevelTwo")).toText(), "GROE.TXT");
    const Ref mangled =
        Ref::adopt(call<REALdictionary>("DRFSObjectQRX", "mangledNames as dictionary", file.get()));
    EXPECT_EQ(host::dictionaryCount(mangled.get()), 3);
    const Ref wanted = host::newDictionary();
    host::dictionarySet(wanted.get(), Value("DRUDF"), Value("u"));
    harness::setterOf<void(REALobject, REALdictionary)>("DRFSObjectQRX", "specificNames as dictionary")(
        file.get(), wanted.get());
    EXPECT_EQ(specificName(file, "DRUDF"), "u");
}

TEST_F(FSObject, PropertiesAreKeptForEachFileSystemAndMergedWhenAsked) {
    const Ref file = virtualFile("f");
    setProperty(file, 0640, "DRPosixFileMode", "DRAllFilesystems");
    setProperty(file, 7, "DRPosixUID", "DRUDF");
    EXPECT_EQ(property(file, "DRPosixFileMode", "DRUDF", true).toInt32(), 0640);
    EXPECT_TRUE(property(file, "DRPosixFileMode", "DRUDF", false).isNil());
    EXPECT_EQ(property(file, "DRPosixUID", "DRUDF", false).toInt32(), 7);
    EXPECT_EQ(host::dictionaryCount(properties(file, "DRUDF", true).get()), 2);
    EXPECT_EQ(host::dictionaryCount(properties(file, "DRUDF", false).get()), 1);
    EXPECT_EQ(host::dictionaryCount(properties(file, "DRJoliet", false).get()), 0);
}

TEST_F(FSObject, AWholeSetIsReplacedAndANilValueTakesAKeyAway) {
    const Ref file = virtualFile("f");
    setProperty(file, 1, "DRInvisible", "DRUDF");
    const Ref set = host::newDictionary();
    host::dictionarySet(set.get(), Value("DRPosixGID"), Value(20));
    call<void>("DRFSObjectQRX", "setProperties(Value as dictionary, filesystem as string)", file.get(),
               set.get(), String("DRUDF").get());
    EXPECT_EQ(host::dictionaryCount(properties(file, "DRUDF", false).get()), 1);
    EXPECT_EQ(property(file, "DRPosixGID", "DRUDF", false).toInt32(), 20);
    setProperty(file, Value(), "DRPosixGID", "DRUDF");
    EXPECT_EQ(host::dictionaryCount(properties(file, "DRUDF", false).get()), 0);
}

TEST_F(FSObject, WhatThePlatformRefusesIsAHostExceptionAndChangesNothing) {
    const Ref file = virtualFile("f");
    testing::internal::CaptureStderr();
    setProperty(file, "text", "DRPosixUID", "DRUDF");
    EXPECT_TRUE(raised());
    EXPECT_TRUE(property(file, "DRPosixUID", "DRUDF", false).isNil());
    EXPECT_EQ(specificName(file, "no such file system"), "");
    EXPECT_TRUE(raised());
    EXPECT_EQ(specificName(file, "DRISO9660"), "");
    EXPECT_TRUE(raised());
    setMask(file, 64);
    EXPECT_TRUE(raised());
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(mask(file, "explicitFilesystemMask as integer"), 0);
}

TEST_F(FSObject, ANilFileSystemIsForwardedAndThePlatformRefusesIt) {
    const Ref file = virtualFile("f");
    testing::internal::CaptureStderr();
    EXPECT_EQ((call<REALstring>("DRFSObjectQRX", "mangledNameForFilesystem(filesystem as string) as string",
                                file.get(), REALstring{nullptr})),
              nullptr);
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(raised());
}

TEST_F(FSObject, MasksAreBitsAndTheParentRestrictsThem) {
    const Ref root = virtualFolder("root"), folder = virtualFolder("folder"), file = virtualFile("file");
    addChild(root, folder);
    addChild(folder, file);
    EXPECT_EQ(mask(file, "effectiveFilesystemMask as integer"), 0);
    setMask(root, 1 | 2 | 4);
    setMask(file, 2 | 8);
    EXPECT_EQ(mask(folder, "effectiveFilesystemMask as integer"), 7);
    EXPECT_EQ(mask(file, "explicitFilesystemMask as integer"), 10);
    EXPECT_EQ(mask(file, "effectiveFilesystemMask as integer"), 2);
}

TEST_F(FSObject, AnEmptyOneAnswersEmptyAndItsSettersDoNothing) {
    const Ref empty = make("DRFileQRX");
    call<void>("DRFileQRX", "Constructor", empty.get());
    EXPECT_EQ(properties(empty, "DRUDF", true).get(), nullptr);
    EXPECT_TRUE(property(empty, "DRInvisible", "DRUDF", true).isNil());
    EXPECT_EQ((call<REALdictionary>("DRFSObjectQRX", "specificNames as dictionary", empty.get())), nullptr);
    EXPECT_EQ((call<REALdictionary>("DRFSObjectQRX", "mangledNames as dictionary", empty.get())), nullptr);
    EXPECT_EQ((call<REALobject>("DRFSObjectQRX", "parent as DRFolderQRX", empty.get())), nullptr);
    // Texts are nil, no texts of nothing.
    for (const char* declaration : {"sourcePath as string", "baseName as string"})
        EXPECT_EQ((call<REALstring>("DRFSObjectQRX", declaration, empty.get())), nullptr) << declaration;
    EXPECT_FALSE((call<bool>("DRFSObjectQRX", "isVirtual as boolean", empty.get())));
    for (const char* declaration : {"specificNameForFilesystem(filesystem as string) as string",
                                    "mangledNameForFilesystem(filesystem as string) as string"})
        EXPECT_EQ((call<REALstring>("DRFSObjectQRX", declaration, empty.get(), String("DRUDF").get())),
                  nullptr)
            << declaration;
    EXPECT_EQ(mask(empty, "explicitFilesystemMask as integer"), 0);
    EXPECT_EQ(mask(empty, "effectiveFilesystemMask as integer"), 0);
    setSpecificName(empty, "no file system", "name");
    setProperty(empty, 1, "key", "no file system");
    setMask(empty, 64);
    call<void>("DRFSObjectQRX", "setProperties(Value as dictionary, filesystem as string)", empty.get(),
               REALdictionary{nullptr}, REALstring{nullptr});
    harness::setterOf<void(REALobject, REALdictionary)>("DRFSObjectQRX",
                                                        "specificNames as dictionary")(empty.get(), nullptr);
    harness::setterOf<void(REALobject, REALstring)>("DRFSObjectQRX", "baseName as string")(empty.get(),
                                                                                           String("x").get());
    EXPECT_EQ(frame::slot(empty.get()), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

// Each of the seven that name a file system. What converts an argument is looked up at its first use: texts, the parts of
// a dictionary, what a variant is.
TEST_F(FSObject, WithoutAPlatformObjectNoArgumentIsConverted) {
    const Ref empty = make("DRFileQRX"), set = host::newDictionary();
    host::dictionarySet(set.get(), Value("key"), Value("value"));
    const String key("key"), filesystem("DRJoliet"), name("name");
    const Ref value = variant(Value("value"));
    const auto lookedUpBy = [](const auto& action) {
        const std::size_t before = harness::lookups().size();
        action();
        const std::vector<std::string> all = harness::lookups();
        return std::vector<std::string>(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
    };
    const std::vector<std::function<void()>> members = {
        [&] {
            harness::setterOf<void(REALobject, REALstring, REALstring)>(
                "DRFSObjectQRX", "specificNameForFilesystem(filesystem as string) as string")(
                empty.get(), filesystem.get(), name.get());
        },
        [&] {
            call<REALstring>("DRFSObjectQRX", "specificNameForFilesystem(filesystem as string) as string",
                             empty.get(), filesystem.get());
        },
        [&] {
            call<REALstring>("DRFSObjectQRX", "mangledNameForFilesystem(filesystem as string) as string",
                             empty.get(), filesystem.get());
        },
        [&] {
            call<REALvariant>("DRFSObjectQRX",
                              "propertyForKey(key as string, filesystem as string, "
                              "mergeWithOtherFilesystems as boolean) as variant",
                              empty.get(), key.get(), filesystem.get(), REALboolean{1});
        },
        [&] {
            call<void>("DRFSObjectQRX", "setProperty(Value as variant, key as string, filesystem as string)",
                       empty.get(), value.get(), key.get(), filesystem.get());
        },
        [&] {
            call<REALdictionary>("DRFSObjectQRX",
                                 "propertiesForFilesystem(filesystem as string, "
                                 "mergeWithOtherFilesystems as boolean) as dictionary",
                                 empty.get(), filesystem.get(), REALboolean{1});
        },
        [&] {
            call<void>("DRFSObjectQRX", "setProperties(Value as dictionary, filesystem as string)",
                       empty.get(), set.get(), filesystem.get());
        }};
    for (std::size_t i = 0; i < members.size(); ++i)
        EXPECT_EQ(lookedUpBy(members[i]), std::vector<std::string>()) << "member " << i;
    // With one the same calls do look things up.
    const Ref file = virtualFile("f");
    EXPECT_FALSE(lookedUpBy([&] { setProperty(file, "value", "key", "DRUDF"); }).empty());
}

TEST_F(FSObject, ConstantsOfThePlatformNeedNoObject) {
    EXPECT_EQ(textOf(call<REALstring>("DRFSObjectQRX", "DRISO9660LevelTwo as string")), "DRISO9660LevelTwo");
    EXPECT_EQ(textOf(call<REALstring>("DRFileQRX", "DRLinkTypeFinderAlias as string")),
              "DRLinkTypeFinderAlias");
}

} // namespace
