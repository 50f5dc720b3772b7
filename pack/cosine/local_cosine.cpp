#include "cosine/local_cosine.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "cosine/folding.h"
#include "dwt/subband_layout.h"

namespace undula {

namespace {

using Index = std::ptrdiff_t;

constexpr std::uint32_t batchRows = 16;

bool isEmpty(const Block& data) {
    return data.rows == 0 || data.cols == 0;
}
bool isSignal(const Block& data) {
    return data.cols < 2;
}

CosineSegment segmentOf(const Segment& segment) {
    return {static_cast<Index>(segment.start), static_cast<Index>(segment.length)};
}

Lines column(const Block& data, std::uint64_t col) {
    return {data.origin + static_cast<Index>(col) * data.stride};
}

Lines rows(const Block& data, const Segment& segment) {
    return {data.origin + segment.start, data.stride, static_cast<Index>(segment.length)};
}

using Folding = void(const Lines& in, Index period, const CosineSegment& segment, const BellSamples& bell,
                     const Lines& out);

// Folds or unfolds a packet down the columns.
void foldDown(Folding* folding, const Block& in, const Rectangle& packet, const BellSamples& bell,
              const Block& out) {
    for (std::uint64_t col = packet.cols.start; col < packet.cols.start + packet.cols.length; ++col) {
        folding(column(in, col), in.rows, segmentOf(packet.rows), bell, column(out, col));
    }
}

// Folds or unfolds a packet along the rows, all of them at once.
void foldAlong(Folding* folding, const Block& in, const Rectangle& packet, const BellSamples& bell,
               const Block& out) {
    folding(rows(in, packet.rows), in.cols, segmentOf(packet.cols), bell, rows(out, packet.rows));
}

Code transformColumns(const Block& data, const Rectangle& packet, Dct4& dct) {
    for (std::uint64_t col = packet.cols.start; col < packet.cols.start + packet.cols.length; ++col) {
        const Code code = dct.transform(column(data, col).origin + packet.rows.start, packet.rows.length);
        if (code != Code::None) return code;
    }
    return Code::None;
}

// Rows are gathered in batches, for which each column is read but once a cache line.
Code transformRows(const Block& data, const Rectangle& packet, Dct4& dct, Workspace& workspace) {
    const auto length = static_cast<Index>(packet.cols.length);
    double* batch = workspace.room(batchRows * packet.cols.length);
    if (batch == nullptr) return Code::OutOfMemory;
    for (std::uint64_t first = 0; first < packet.rows.length; first += batchRows) {
        const Segment some = {packet.rows.start + first,
                              std::min<std::uint64_t>(batchRows, packet.rows.length - first)};
        const Lines lines = rows(data, some);
        double* origin = lines.origin + static_cast<Index>(packet.cols.start) * lines.stride;
        for (Index p = 0; p < length; ++p) {
            for (Index row = 0; row < lines.count; ++row)
                batch[row * length + p] = origin[p * lines.stride + row];
        }
        for (Index row = 0; row < lines.count; ++row) {
            const Code code = dct.transform(batch + row * length, packet.cols.length);
            if (code != Code::None) return code;
        }
        for (Index p = 0; p < length; ++p) {
            for (Index row = 0; row < lines.count; ++row)
                origin[p * lines.stride + row] = batch[row * length + p];
        }
    }
    return Code::None;
}

// Calls visit(packet) with the place of every packet of a level, until one answers with a code.
template <class Visit>
Code forEachPacket(const Block& data, std::uint32_t level, Visit visit) {
    const std::uint64_t rowCount = std::uint64_t{1} << level;
    const std::uint64_t colCount = isSignal(data) ? 1 : rowCount;
    for (std::uint64_t row = 0; row < rowCount; ++row) {
        for (std::uint64_t col = 0; col < colCount; ++col) {
            const Code code = visit(packetPlace(data.rows, data.cols, level, row, col));
            if (code != Code::None) return code;
        }
    }
    return Code::None;
}

template <class Visit>
Code forEachPacket(const Block& data, const PacketList& basis, Visit visit) {
    for (const Packet& packet : basis) {
        const Code code = visit(packetPlace(data.rows, data.cols, static_cast<std::uint32_t>(packet.level),
                                            static_cast<std::uint64_t>(packet.row),
                                            static_cast<std::uint64_t>(packet.col)));
        if (code != Code::None) return code;
    }
    return Code::None;
}

// Of a block whose columns follow each other without a gap.
std::span<double> numbersOf(const Block& data) {
    return {data.origin, static_cast<std::size_t>(data.rows) * data.cols};
}

Code mergeSignal(const PacketList& basis, const Bells& bells, const Block& work, const Block& result,
                 const Poll& poll, Dct4& dct) {
    std::ranges::fill(numbersOf(result), 0.0);
    return forEachPacket(work, basis, [&](const Rectangle& packet) {
        if (poll()) return Code::Interrupted;
        const Code code = transformColumns(work, packet, dct);
        if (code == Code::None) foldDown(unfold, work, packet, bells.down, result);
        return code;
    });
}

Code mergeImage(const PacketList& basis, const Bells& bells, const Block& work, const Block& result,
                Dct4& dct) {
    Workspace workspace;
    const Code code = forEachPacket(work, basis, [&](const Rectangle& packet) {
        const Code rowCode = transformRows(work, packet, dct, workspace);
        return rowCode != Code::None ? rowCode : transformColumns(work, packet, dct);
    });
    if (code != Code::None) return code;
    // Along the rows into the result, which is only on its way; then down the columns and back.
    std::ranges::fill(numbersOf(result), 0.0);
    forEachPacket(work, basis, [&](const Rectangle& packet) {
        foldAlong(unfold, work, packet, bells.forRows(), result);
        return Code::None;
    });
    std::ranges::fill(numbersOf(work), 0.0);
    forEachPacket(work, basis, [&](const Rectangle& packet) {
        foldDown(unfold, result, packet, bells.down, work);
        return Code::None;
    });
    std::ranges::copy(numbersOf(work), result.origin);
    return Code::None;
}

}  // namespace

double makeRoom(const Block& data) {
    // Fewer than 2^29 numbers: no sum of them, folded and transformed, is 2^40 times the largest.
    const auto isLarge = [](double x) { return std::isgreaterequal(std::fabs(x), 0x1p984); };
    if (std::ranges::none_of(numbersOf(data), isLarge)) return 1.0;
    multiply(data, 0x1p-40);
    return 0x1p40;
}

void multiply(const Block& data, double factor) {
    if (factor == 1.0) return;
    for (double& number : numbersOf(data)) number *= factor;
}

Code cosineLevel(const Block& data, std::uint32_t level, const Bells& bells, const Block& out,
                 const Block& scratch, Dct4& dct) {
    if (isEmpty(data)) return Code::None;
    const bool signal = isSignal(data);
    const Block& foldedDown = signal ? out : scratch;
    forEachPacket(data, level, [&](const Rectangle& packet) {
        foldDown(fold, data, packet, bells.down, foldedDown);
        return Code::None;
    });
    if (signal)
        return forEachPacket(out, level,
                             [&](const Rectangle& packet) { return transformColumns(out, packet, dct); });

    Workspace workspace;
    return forEachPacket(data, level, [&](const Rectangle& packet) {
        foldAlong(fold, scratch, packet, bells.forRows(), out);
        const Code code = transformColumns(out, packet, dct);
        return code != Code::None ? code : transformRows(out, packet, dct, workspace);
    });
}

Code mergeCosines(const PacketList& basis, const Bells& bells, const Block& work, const Block& result,
                  const Poll& poll, Dct4& dct) {
    if (isEmpty(work)) return Code::None;
    return isSignal(work) ? mergeSignal(basis, bells, work, result, poll, dct)
                          : mergeImage(basis, bells, work, result, dct);
}

}  // namespace undula
