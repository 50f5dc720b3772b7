// What a pack imports from its host. Each operation may throw what services.h says.
#pragma once

#include "efi/services.h"

// Makes an error value. `message` is copied; `argIndex` is the 1-based position of the argument
// at fault, or 0 for the call as a whole; `extra` is 0.
EFI_HOST Anyval* mkError(EfiCallContext* context, const char* message, int argIndex, int extra);

// Discrete Fourier transform of a complex column of n rows, unscaled: entry m of the result is the
// sum of x[k] exp(-2 pi i k m / n) (CFFT) or x[k] exp(+2 pi i k m / n) (ICFFT). The result is a column
// of n rows, valid until the next transform. What the given column holds afterwards is undefined. An
// error value (tag 0) or null means failure.
EFI_HOST aMatrix* CFFT(EfiCallContext* context, Anyval* column);
EFI_HOST aMatrix* ICFFT(EfiCallContext* context, Anyval* column);

// Nested values. A cell of a matrix holds a number or a nested value. Only the host knows which, so no
// number is ever taken for a pointer. Cells are counted by columns: cell (r, c) has the place
// rows * c + r.
//
// The first place at or after `from` whose cell is nested, or -1.
EFI_HOST std::int64_t efiFindNested(EfiCallContext* context, const aMatrix* matrix, std::int64_t from);
// The value nested in a cell; null when the cell holds a number.
EFI_HOST Anyval* efiReadNested(EfiCallContext* context, const aMatrix* matrix, int row, int col);
// Puts a value into a cell, in place of what was there. Returns 0, or another status when there is no
// memory.
EFI_HOST int efiWriteNested(EfiCallContext* context, aMatrix* matrix, int row, int col, Anyval* value);

// Register a pack with the host, and remove it again. The result is the host's status.
EFI_HOST int RegisterEfiFunctionPack(void* moduleHandle, const EfiGuid* packId);
EFI_HOST int UnregisterEfiFunctionPack(const EfiGuid* packId);

// The identifier of the root set for the allocator's QueryInterface.
EFI_HOST extern const EfiGuid efiRootSetId;

// The calling shapes of functions. A row of a pack's table holds the value of one of these.
struct sFunctionInfo;
EFI_HOST extern sFunctionInfo* Any_to_Any;
EFI_HOST extern sFunctionInfo* Any_Any_to_Any;
EFI_HOST extern sFunctionInfo* Any_Any_Any_to_Any;
EFI_HOST extern sFunctionInfo* Any_Any_Any_Any_to_Any;
EFI_HOST extern sFunctionInfo* Any_Any_Any_Any_Any_to_Any;
EFI_HOST extern sFunctionInfo* Any_Any_Any_Any_Any_Any_Any_to_Any;
EFI_HOST extern sFunctionInfo* Variable_to_Any;
