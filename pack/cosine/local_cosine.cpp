#include "cosine/local_cosine.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "cosine/folding.h"
#include "dwt/subband_layout.h"

namespace undula {

namespace {

using Index = std::ptrdiff_t;

// Rows that are gathered at once: whole cache lines of each column.
constexpr std::uint32_t batchRows = 16;

CosineSegment segmentOf(const Segment& segment) {
    return {static_cast<Index>(segment.start), static_cast<Index>(segment.length)};
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
        folding({in.column(col)}, in.rows, segmentOf(packet.rows), bell, {out.column(col)});
    }
}

// Folds or unfolds a packet along the rows, all of them at once.
void foldAlong(Folding* folding, const Block& in, const Rectangle& packet, const BellSamples& bell,
               const Block& out) {
    folding(rows(in, packet.rows), in.cols, segmentOf(packet.cols), bell, rows(out, packet.rows));
}

Failure transformColumns(const Block& data, const Rectangle& packet, Dct4& dct) {
    const Block block = partOf(data, packet);
    for (std::uint32_t col = 0; col < block.cols; ++col) {
        if (auto failure = dct.transform(block.column(col), block.rows)) return failure;
    }
    return {};
}

// Rows are gathered in batches, for which each column is read but once a cache line.
Failure transformRows(const Block& data, const Rectangle& packet, Dct4& dct, Workspace& workspace) {
    const Block block = partOf(data, packet);
    const auto length = static_cast<Index>(block.cols);
    double* batch = workspace.room(std::uint64_t{batchRows} * block.cols);
    if (batch == nullptr) return Code::OutOfMemory;
    for (std::uint32_t first = 0; first < block.rows; first += batchRows) {
        const Index count = std::min(batchRows, block.rows - first);
        double* origin = block.origin + first;
        for (Index p = 0; p < length; ++p) {
            for (Index row = 0; row < count; ++row) batch[row * length + p] = origin[p * block.stride + row];
        }
        for (Index row = 0; row < count; ++row) {
            if (auto failure = dct.transform(batch + row * length, block.cols)) return failure;
        }
        for (Index p = 0; p < length; ++p) {
            for (Index row = 0; row < count; ++row) origin[p * block.stride + row] = batch[row * length + p];
        }
    }
    return {};
}

// Calls visit(place) for every packet of a level, until one returns a failure.
template <class Visit>
Failure forPlaces(const Block& data, std::uint32_t level, Visit visit) {
    return forPacketsOfLevel(data.isSignal(), level, [&](const PacketIndex& packet) -> Failure {
        return visit(packetPlace(data.rows, data.cols, packet));
    });
}

// The same for the packets of a basis.
template <class Visit>
Failure forPlaces(const Block& data, const PacketList& basis, Visit visit) {
    for (const Packet& packet : basis) {
        if (Failure failure = visit(packetPlace(data.rows, data.cols, packet.index()))) return failure;
    }
    return {};
}

// Of a block whose columns follow one another without gaps.
std::span<double> numbersOf(const Block& data) {
    return {data.origin, data.size()};
}

void clear(const Block& data) {
    std::fill_n(data.origin, data.size(), 0.0);
}

Failure mergeSignal(const PacketList& basis, const Bells& bells, const Block& work, const Block& result,
                    const Poll& poll, Dct4& dct) {
    clear(result);
    return forPlaces(work, basis, [&](const Rectangle& packet) -> Failure {
        if (poll()) return Code::Interrupted;
        if (auto failure = transformColumns(work, packet, dct)) return failure;
        foldDown(unfold, work, packet, bells.down, result);
        return {};
    });
}

Failure mergeImage(const PacketList& basis, const Bells& bells, const Block& work, const Block& result,
                   Dct4& dct) {
    Workspace workspace;
    const auto transform = [&](const Rectangle& packet) {
        if (auto failure = transformRows(work, packet, dct, workspace)) return failure;
        return transformColumns(work, packet, dct);
    };
    if (auto failure = forPlaces(work, basis, transform)) return failure;
    // Along the rows into the result, which is only on its way; then down the columns and back.
    clear(result);
    for (const Packet& packet : basis) {
        const Rectangle place = packetPlace(work.rows, work.cols, packet.index());
        foldAlong(unfold, work, place, bells.forRows(), result);
    }
    clear(work);
    for (const Packet& packet : basis) {
        const Rectangle place = packetPlace(work.rows, work.cols, packet.index());
        foldDown(unfold, result, place, bells.down, work);
    }
    copyBlock(work, result);
    return {};
}

}  // namespace

double makeRoom(const Block& data) {
    // Fewer than 2^29 numbers: no sum of them, folded and transformed, is 2^40 times the largest.
    const auto isLarge = [](double x) { return std::isgreaterequal(std::fabs(x), 0x1p984); };
    if (std::none_of(data.origin, data.origin + data.size(), isLarge)) return 1.0;
    multiply(data, 0x1p-40);
    return 0x1p40;
}

void multiply(const Block& data, double factor) {
    if (factor == 1.0) return;
    for (double& number : numbersOf(data)) number *= factor;
}

Failure cosineLevel(const Block& data, std::uint32_t level, const Bells& bells, const Block& out,
                    const Block& scratch, Dct4& dct) {
    if (data.isEmpty()) return {};
    if (data.isSignal()) {
        return forPlaces(data, level, [&](const Rectangle& packet) {
            foldDown(fold, data, packet, bells.down, out);
            return transformColumns(out, packet, dct);
        });
    }
    forPlaces(data, level, [&](const Rectangle& packet) {
        foldDown(fold, data, packet, bells.down, scratch);
        return Failure();
    });
    Workspace workspace;
    return forPlaces(data, level, [&](const Rectangle& packet) {
        foldAlong(fold, scratch, packet, bells.forRows(), out);
        if (auto failure = transformColumns(out, packet, dct)) return failure;
        return transformRows(out, packet, dct, workspace);
    });
}

Failure mergeCosines(const PacketList& basis, const Bells& bells, const Block& work, const Block& result,
                     const Poll& poll, Dct4& dct) {
    if (work.isEmpty()) return {};
    return work.isSignal() ? mergeSignal(basis, bells, work, result, poll, dct)
                           : mergeImage(basis, bells, work, result, dct);
}

}  // namespace undula
