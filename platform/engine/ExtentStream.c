/* ExtentStream.c: the stand-in for a file's contents while libisofs lays out the image. */
#include "ExtentStream.h"

#include <stdlib.h>
#include <string.h>
#include <sys/types.h>

#include <libisofs/libisofs.h>

struct extent {
    uint64_t size;
    uint64_t number;
};

static int extent_open(IsoStream* stream) {
    (void)stream;
    return 1;
}

static int extent_close(IsoStream* stream) {
    (void)stream;
    return 1;
}

static off_t extent_size(IsoStream* stream) { return (off_t)((struct extent*)stream->data)->size; }

/* Nobody uses these bytes: the generator is stopped when all it has to say before the contents is read. */
static int extent_read(IsoStream* stream, void* buffer, size_t count) {
    (void)stream;
    memset(buffer, 0, count);
    return (int)count;
}

static int extent_is_repeatable(IsoStream* stream) {
    (void)stream;
    return 1;
}

static void extent_id(IsoStream* stream, unsigned int* fs_id, dev_t* dev_id, ino_t* ino_id) {
    *fs_id = 0x4453; /* libisofs itself uses small numbers */
    *dev_id = 1;
    *ino_id = (ino_t)((struct extent*)stream->data)->number;
}

static void extent_free(IsoStream* stream) { free(stream->data); }

static int extent_update_size(IsoStream* stream) {
    (void)stream;
    return 1;
}

static IsoStream* extent_input(IsoStream* stream, int flag) {
    (void)stream;
    (void)flag;
    return NULL;
}

static int extent_clone(IsoStream* stream, IsoStream** copy, int flag) {
    (void)stream;
    (void)flag;
    *copy = NULL;
    return (int)ISO_STREAM_NO_CLONE;
}

static IsoStreamIface extent_class = {
    .version = 4,
    .type = {'u', 's', 'e', 'r'},
    .open = extent_open,
    .close = extent_close,
    .get_size = extent_size,
    .read = extent_read,
    .is_repeatable = extent_is_repeatable,
    .get_id = extent_id,
    .free = extent_free,
    .update_size = extent_update_size,
    .get_input_stream = extent_input,
    .cmp_ino = NULL,
    .clone_stream = extent_clone,
};

IsoStream* engine_extent_stream(uint64_t size, uint64_t number) {
    struct extent* extent = malloc(sizeof *extent);
    IsoStream* stream = malloc(sizeof *stream);
    if (extent == NULL || stream == NULL) {
        free(extent);
        free(stream);
        return NULL;
    }
    extent->size = size;
    extent->number = number;
    stream->class = &extent_class;
    stream->refcount = 1;
    stream->data = extent;
    return stream;
}
