// The operations that packs import: each goes to the host that the context or allocator names.
#include "efi/host.h"

#include "efi/layout.h"
#include "services.h"

const EfiGuid efiRootSetId = {0x6f1d6a52, 0x93c4, 0x4b0e, {0xa7, 0x35, 0x0c, 0x58, 0xe2, 0x41, 0xbd, 0x96}};

namespace {

efihost::Host& hostOf(IqrAllocator* allocator) {
    return static_cast<efihost::Allocator*>(allocator)->host();
}

efihost::Host& hostOf(EfiCallContext* context) {
    return hostOf(context->allocator);
}

}  // namespace

aMatrix* aMatrix::mk(IqrAllocator* allocator, int rows, int cols, double* re, double* im, unsigned bytes) {
    return hostOf(allocator).makeMatrix(rows, cols, re, im, bytes);
}

Cons* Cons::mk(IqrAllocator* allocator, Anyval* value, Cons* next) {
    return hostOf(allocator).makeCell(value, next);
}

Anyval* mkError(EfiCallContext* context, const char* message, int argIndex, int) {
    return hostOf(context).makeError(message, argIndex);
}

aMatrix* CFFT(EfiCallContext* context, Anyval* column) {
    return hostOf(context).transform(column, false);
}

aMatrix* ICFFT(EfiCallContext* context, Anyval* column) {
    return hostOf(context).transform(column, true);
}

std::int64_t efiFindNested(EfiCallContext* context, const aMatrix* matrix, std::int64_t from) {
    return hostOf(context).findNested(matrix, from);
}

Anyval* efiReadNested(EfiCallContext* context, const aMatrix* matrix, int row, int col) {
    return hostOf(context).readNested(matrix, row, col);
}

int efiWriteNested(EfiCallContext* context, aMatrix* matrix, int row, int col, Anyval* value) {
    return hostOf(context).writeNested(matrix, row, col, value);
}
