// CDTextBlockTest: blocks of CD-Text: their properties and texts, what fits, and packs both ways.
#import "Check.h"
#import "DRBurn.h"
#import "DRCDTextBlock.h"
#import "DRCDTextPrivate.h"

static DRCDTextBlock* Block(NSString* language, DRCDTextEncoding encoding) {
    return [DRCDTextBlock cdTextBlockWithLanguage:language encoding:encoding];
}

static DRCDTextBlock* BlockRead(DRCDTextBlock* block) {
    NSData* packs = [DRCDTextBlock packsOfCDTextBlocks:[NSArray arrayWithObject:block]];
    NSArray* blocks = [DRCDTextBlock arrayOfCDTextBlocksFromPacks:packs];
    PASS("one block comes back", [blocks count] == 1);
    return [blocks lastObject];
}

static NSString* Text(const char* utf8) { return [NSString stringWithUTF8String:utf8]; }

static NSData* Letters(const char* letters) { return [NSData dataWithBytes:letters length:strlen(letters)]; }

static void TestNewBlocks(void) {
    DRCDTextBlock* block = Block(@"de", DRCDTextEncodingISOLatin1Modified);
    SAME("the language", [block language], @"de");
    PASS("the encoding", [block encoding] == 5);
    SAME("no language is an empty one", [Block(nil, 1) language], @"");
    SAME("one that no disc knows stays", [Block(@"tlh", 1) language], @"tlh");
    SAME("and the disc says unknown", [[Block(@"tlh", 1) properties] objectForKey:DRCDTextLanguageKey],
         [NSNumber numberWithInt:0]);
    SAME("the disc's dictionary is there, and empty", [block trackDictionaries],
         [NSArray arrayWithObject:[NSDictionary dictionary]]);
    PASS("nothing is cut", [block flatten] == 0);
    PASS("nothing of a track that isn't", [block objectForKey:DRCDTextTitleKey ofTrack:7] == nil);
    PASS("no block of an encoding that no disc has", Block(@"en", 10) == nil && Block(@"en", 0) == nil);
    DRCDTextEncoding encodings[] = {DRCDTextEncodingASCII, DRCDTextEncodingUTF8,
                                    DRCDTextEncodingISOLatin1Modified, DRCDTextEncodingShiftJIS};
    int codes[] = {0x01, 0x00, 0x00, 0x80};
    for (size_t i = 0; i < 4; i++) {
        NSDictionary* properties = [Block(@"en", encodings[i]) properties];
        PASS("six properties", [properties count] == 6);
        PASS("the character code", [[properties objectForKey:DRCDTextCharacterCodeKey] intValue] == codes[i]);
        PASS("the encoding's number",
             [[properties objectForKey:DRCDTextNSStringEncodingKey] unsignedIntegerValue] == encodings[i]);
        PASS("the language's number", [[properties objectForKey:DRCDTextLanguageKey] intValue] == 0x09);
    }
}

static void TestProperties(void) {
    DRCDTextBlock* block = Block(@"en", DRCDTextEncodingISOLatin1Modified);
    NSString* copyrights[] = {DRCDTextCopyrightAssertedForTitlesKey, DRCDTextCopyrightAssertedForNamesKey,
                              DRCDTextCopyrightAssertedForSpecialMessagesKey};
    for (size_t i = 0; i < 3; i++) {
        SAME("no copyright is asserted", [[block properties] objectForKey:copyrights[i]],
             [NSNumber numberWithBool:NO]);
        [block setProperties:[NSDictionary dictionaryWithObject:[NSNumber numberWithBool:YES]
                                                         forKey:copyrights[i]]];
        DRCDTextBlock* read = BlockRead(block);
        for (size_t j = 0; j < 3; j++) {
            PASS("the one that is, and no other",
                 [[[block properties] objectForKey:copyrights[j]] boolValue] == (i == j));
            PASS("also on the disc", [[[read properties] objectForKey:copyrights[j]] boolValue] == (i == j));
        }
    }
    [block setProperties:[NSDictionary dictionaryWithObjectsAndKeys:@"fr", DRCDTextLanguageKey,
                                                                    [NSNumber numberWithInt:0x80],
                                                                    DRCDTextCharacterCodeKey,
                                                                    [NSNumber numberWithInt:8],
                                                                    DRCDTextNSStringEncodingKey, nil]];
    NSDictionary* properties = [block properties];
    SAME("a language as text becomes its number", [properties objectForKey:DRCDTextLanguageKey],
         [NSNumber numberWithInt:0x0F]);
    PASS("the character code stays", [[properties objectForKey:DRCDTextCharacterCodeKey] intValue] == 0);
    PASS("the encoding stays", [[properties objectForKey:DRCDTextNSStringEncodingKey] intValue] == 5);
    SAME("the block was made with another language", [block language], @"en");
    SAME("the disc has the new one", [BlockRead(block) language], @"fr");
    [block setProperties:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:0x69]
                                                     forKey:DRCDTextLanguageKey]];
    SAME("a language as a number", [BlockRead(block) language], @"ja");
    RAISES("no language", NSInvalidArgumentException, @"DRCDTextLanguageKey",
           [block setProperties:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:256]
                                                            forKey:DRCDTextLanguageKey]]);
    RAISES("not a language either", NSInvalidArgumentException, @"DRCDTextLanguageKey",
           [block setProperties:[NSDictionary dictionaryWithObject:[NSDate date]
                                                            forKey:DRCDTextLanguageKey]]);
    PASS("a refusal changes nothing",
         [[[block properties] objectForKey:DRCDTextLanguageKey] intValue] == 0x69);
    [block setProperties:nil];
    PASS("defaults", [[[block properties] objectForKey:DRCDTextLanguageKey] intValue] == 0x09);
}

static void TestTexts(void) {
    DRCDTextBlock* block = Block(@"en", DRCDTextEncodingISOLatin1Modified);
    [block setObject:@"One" forKey:DRCDTextTitleKey ofTrack:2];
    PASS("tracks before it are there", [[block trackDictionaries] count] == 3);
    SAME("the text", [block objectForKey:DRCDTextTitleKey ofTrack:2], @"One");
    PASS("no text", [block objectForKey:DRCDTextTitleKey ofTrack:1] == nil);
    [block setObject:nil forKey:DRCDTextTitleKey ofTrack:2];
    PASS("taken away", [block objectForKey:DRCDTextTitleKey ofTrack:2] == nil);
    [block setObject:nil forKey:DRCDTextTitleKey ofTrack:50];
    PASS("taking away adds no track", [[block trackDictionaries] count] == 3);
    NSMutableDictionary* disc = [NSMutableDictionary dictionaryWithObject:@"Disc" forKey:DRCDTextTitleKey];
    [block setTrackDictionaries:[NSArray arrayWithObject:disc]];
    [disc setObject:@"Changed" forKey:DRCDTextTitleKey];
    SAME("a copy is kept", [block objectForKey:DRCDTextTitleKey ofTrack:0], @"Disc");
    NSArray* before = [block trackDictionaries];
    [block setObject:@"New" forKey:DRCDTextTitleKey ofTrack:0];
    SAME("a copy was given", [[before objectAtIndex:0] objectForKey:DRCDTextTitleKey], @"Disc");
    RAISES("a key that is none", NSInvalidArgumentException, @"DRBurnAppendableKey is not known",
           [block setObject:@"x" forKey:DRBurnAppendableKey ofTrack:0]);
    RAISES("a key for discs", NSInvalidArgumentException, @"track 1: DRCDTextGenreKey is for the disc only",
           [block setObject:@"x" forKey:DRCDTextGenreKey ofTrack:1]);
    RAISES("a number as text", NSInvalidArgumentException, @"must be an NSString",
           [block setObject:[NSNumber numberWithInt:1] forKey:DRCDTextTitleKey ofTrack:0]);
    RAISES("a text as number", NSInvalidArgumentException, @"must be an NSNumber",
           [block setObject:@"1" forKey:DRCDTextGenreCodeKey ofTrack:0]);
    RAISES("a genre that no two bytes hold", NSInvalidArgumentException, @"no code",
           [block setObject:[NSNumber numberWithInt:65536] forKey:DRCDTextGenreCodeKey ofTrack:0]);
    RAISES("a text as bytes", NSInvalidArgumentException, @"must be an NSData",
           [block setObject:@"1" forKey:DRCDTextMCNISRCKey ofTrack:0]);
    RAISES("too many letters", NSInvalidArgumentException, @"more than 13",
           [block setObject:Letters("1234567890123") forKey:DRCDTextMCNISRCKey ofTrack:1]);
    RAISES("too many tracks", NSRangeException, @"99",
           [block setObject:@"x" forKey:DRCDTextTitleKey ofTrack:100]);
    NSArray* wrong = [NSArray arrayWithObjects:disc, @"no dictionary", nil];
    RAISES("no dictionary", NSInvalidArgumentException, @"must be a dictionary",
           [block setTrackDictionaries:wrong]);
    SAME("refusals change nothing", [block objectForKey:DRCDTextTitleKey ofTrack:0], @"New");
    PASS("no track either", [[block trackDictionaries] count] == 1);
}

static void TestFitting(void) {
    struct {
        DRCDTextEncoding encoding;
        const char* kept;
    } rows[] = {
        {DRCDTextEncodingISOLatin1Modified, "Gr\u00FC\u00DFe ? ? !"},
        {DRCDTextEncodingUTF8, "Gr\u00FC\u00DFe ? ? !"},
        {DRCDTextEncodingASCII, "Gr??e ? ? !"},
        {DRCDTextEncodingShiftJIS, "\uFF27\uFF52\uFF1F\uFF1F\uFF45\u3000\u65E5\u3000\uFF1F\u3000\uFF01"}};
    for (size_t i = 0; i < sizeof rows / sizeof *rows; i++) {
        DRCDTextBlock* block = Block(@"en", rows[i].encoding);
        // The umlaut as a letter and a mark, which belong together.
        [block setObject:Text("Gru\u0308\u00DFe \u65E5 \U0001F600 !") forKey:DRCDTextTitleKey ofTrack:0];
        SAME("what the disc can say", [block objectForKey:DRCDTextTitleKey ofTrack:0], Text(rows[i].kept));
        DRCDTextBlock* read = BlockRead(block);
        SAME("and says",
             [read trackDictionaries].count == 0 ? nil : [read objectForKey:DRCDTextTitleKey ofTrack:0],
             Text(rows[i].kept));
        [block setObject:Text("Gr\u00FC\u00DFe") forKey:DRCDTextClosedKey ofTrack:0];
        SAME("closed information is Latin everywhere", [block objectForKey:DRCDTextClosedKey ofTrack:0],
             Text("Gr\u00FC\u00DFe"));
        [block setObject:Text("Gr\u00FC\u00DFe") forKey:DRCDTextGenreKey ofTrack:0];
        SAME("a genre is ASCII everywhere", [block objectForKey:DRCDTextGenreKey ofTrack:0], @"Gr??e");
    }
}

// Every key, for a disc and two tracks.
static NSArray* FullDictionaries(void) {
    NSMutableArray* all = [NSMutableArray array];
    NSString* ofTracks[] = {DRCDTextTitleKey,    DRCDTextPerformerKey, DRCDTextSongwriterKey,
                            DRCDTextComposerKey, DRCDTextArrangerKey,  DRCDTextSpecialMessageKey,
                            DRCDTextClosedKey};
    for (int track = 0; track < 3; track++) {
        NSMutableDictionary* dictionary = [NSMutableDictionary dictionary];
        for (size_t i = 0; i < sizeof ofTracks / sizeof *ofTracks; i++)
            [dictionary setObject:[NSString stringWithFormat:@"%@ of %d", ofTracks[i], track]
                           forKey:ofTracks[i]];
        [dictionary setObject:Letters(track == 0 ? "4006381333931" : "DEA129900001")
                       forKey:DRCDTextMCNISRCKey];
        [all addObject:dictionary];
    }
    NSMutableDictionary* disc = [all objectAtIndex:0];
    [disc setObject:@"AB 123" forKey:DRCDTextDiscIdentKey];
    [disc setObject:@"Feline" forKey:DRCDTextGenreKey];
    [disc setObject:[NSNumber numberWithInt:28] forKey:DRCDTextGenreCodeKey];
    return all;
}

static void TestPacks(void) {
    DRCDTextEncoding encodings[] = {DRCDTextEncodingISOLatin1Modified, DRCDTextEncodingASCII,
                                    DRCDTextEncodingUTF8, DRCDTextEncodingShiftJIS};
    NSMutableArray* blocks = [NSMutableArray array];
    for (size_t i = 0; i < 4; i++) {
        DRCDTextBlock* block = Block(i == 3 ? @"ja" : @"en", encodings[i]);
        [block setTrackDictionaries:FullDictionaries()];
        [blocks addObject:block];
    }
    NSData* packs = [DRCDTextBlock packsOfCDTextBlocks:blocks];
    PASS("whole packs", [packs length] > 0 && [packs length] % 18 == 0);
    NSArray* read = [DRCDTextBlock arrayOfCDTextBlocksFromPacks:packs];
    PASS("all blocks", [read count] == 4);
    for (NSUInteger i = 0; i < [read count]; i++) {
        DRCDTextBlock *block = [blocks objectAtIndex:i], *again = [read objectAtIndex:i];
        SAME("the language", [again language], [block language]);
        // What was UTF-8 is Latin 1 on the disc.
        PASS("the encoding", [again encoding] == (i == 2 ? 5 : encodings[i]));
        NSMutableArray* dictionaries = [NSMutableArray arrayWithArray:[again trackDictionaries]];
        NSMutableDictionary* disc =
            [NSMutableDictionary dictionaryWithDictionary:[dictionaries objectAtIndex:0]];
        PASS("the sizes are there", [[disc objectForKey:DRCDTextSizeKey] length] == 36);
        [disc removeObjectForKey:DRCDTextSizeKey];
        [dictionaries replaceObjectAtIndex:0 withObject:disc];
        SAME("all texts", dictionaries, [block trackDictionaries]);
    }
    SAME("what was read is written as it was", [DRCDTextBlock packsOfCDTextBlocks:read], packs);
    DRCDTextBlock* copy = Block(@"en", 5);
    [copy setTrackDictionaries:[[read objectAtIndex:0] trackDictionaries]];
    SAME("what was read may be set, sizes and all", [copy trackDictionaries],
         [[read objectAtIndex:0] trackDictionaries]);

    NSUInteger length = [packs length] + 2;
    unsigned char header[4] = {(unsigned char)(length >> 8), (unsigned char)length, 0, 0};
    NSMutableData* framed = [NSMutableData dataWithBytes:header length:4];
    [framed appendData:packs];
    PASS("with a drive's four bytes", [[DRCDTextBlock arrayOfCDTextBlocksFromPacks:framed] count] == 4);
    PASS("no packs", [DRCDTextBlock arrayOfCDTextBlocksFromPacks:nil] == nil);
    PASS("empty packs", [DRCDTextBlock arrayOfCDTextBlocksFromPacks:[NSData data]] == nil);
    PASS("half a pack",
         [DRCDTextBlock arrayOfCDTextBlocksFromPacks:[packs subdataWithRange:NSMakeRange(0, 9)]] == nil);
    NSMutableData* broken = [NSMutableData dataWithData:packs];
    ((unsigned char*)[broken mutableBytes])[5] ^= 1;
    PASS("a changed bit", [DRCDTextBlock arrayOfCDTextBlocksFromPacks:broken] == nil);
    NSMutableArray* nine = [NSMutableArray arrayWithArray:blocks];
    [nine addObjectsFromArray:blocks];
    PASS("eight blocks",
         [[DRCDTextBlock arrayOfCDTextBlocksFromPacks:[DRCDTextBlock packsOfCDTextBlocks:nine]] count] == 8);
    [nine addObject:[blocks lastObject]];
    PASS("nine are too many", [DRCDTextBlock packsOfCDTextBlocks:nine] == nil);
}

static void TestFlatten(void) {
    DRCDTextBlock* block = Block(@"en", DRCDTextEncodingISOLatin1Modified);
    NSString* line = [@"" stringByPaddingToLength:3023 withString:@"x" startingAtIndex:0];
    [block setObject:line forKey:DRCDTextTitleKey ofTrack:0];
    PASS("all that fits", [block flatten] == 0);
    [block setObject:[line stringByAppendingString:@"yz"] forKey:DRCDTextTitleKey ofTrack:0];
    PASS("two letters too many", [block flatten] == 2);
    SAME("are cut", [BlockRead(block) objectForKey:DRCDTextTitleKey ofTrack:0], line);
    PASS("on the disc only", [[block objectForKey:DRCDTextTitleKey ofTrack:0] length] == 3025);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    TestNewBlocks();
    TestProperties();
    TestTexts();
    TestFitting();
    TestPacks();
    TestFlatten();
    [pool release];
    return Finish();
}
