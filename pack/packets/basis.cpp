#include "packets/basis.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

#include "frame/numbers.h"

namespace undula {

namespace {

// From here on every finite number is below 2^level.
constexpr double levelBeyondNumbers = 1024.0;

bool isBelowPowerOfTwo(double position, double level) {
    if (level >= levelBeyondNumbers) return std::isfinite(position);
    return position < std::ldexp(1.0, static_cast<int>(level));
}

Failure checkPosition(double position, double level) {
    if (!isWhole(position)) return Code::MustBeInteger;
    return position >= 0.0 && isBelowPowerOfTwo(position, level) ? Code::None : Code::InvalidPacketBasis;
}

Failure checkPacket(const Packet& packet) {
    if (!isWhole(packet.level)) return Code::MustBeInteger;
    if (packet.level < 0.0 || packet.level > largest32Bits) return Code::InvalidPacketBasis;
    if (auto failure = checkPosition(packet.row, packet.level)) return failure;
    return checkPosition(packet.col, packet.level);
}

Packet parentOf(const Packet& packet) {
    return {packet.level - 1.0, std::floor(packet.row / 2.0), std::floor(packet.col / 2.0)};
}

// Which of its parent's children a packet is: by row first, then by column.
double childIndex(const Packet& packet, int dimensions) {
    const Packet parent = parentOf(packet);
    const double row = packet.row - 2.0 * parent.row;
    return dimensions == 1 ? row : 2.0 * row + (packet.col - 2.0 * parent.col);
}

bool isSame(const Packet& a, const Packet& b) {
    return a.level == b.level && a.row == b.row && a.col == b.col;
}

// The deepest first, and siblings side by side.
struct SiblingOrder {
    int dimensions;

    bool operator()(const Packet& a, const Packet& b) const {
        const auto key = [this](const Packet& packet) {
            const Packet parent = parentOf(packet);
            return std::tuple(-packet.level, parent.row, parent.col, childIndex(packet, dimensions));
        };
        return key(a) < key(b);
    }
};

// Packets of one level, put together from the basis rows of that level and from the parents of the
// level below.
class Level {
 public:
    Level(const Basis& basis, Packet* memory) : dimensions(basis.dimensions), packets(memory) {}

    void add(const Packet& packet) { packets[count++] = packet; }

    // Replaces complete families by their parents, which are appended to the splits; false when a
    // packet lacks a sibling or stands in the place of another.
    bool mergeFamilies(PacketList& splits) {
        const std::size_t familySize = dimensions == 1 ? 2 : 4;
        if (count % familySize != 0) return false;
        std::sort(packets, packets + count, SiblingOrder{dimensions});
        std::size_t merged = 0;
        for (std::size_t first = 0; first < count; first += familySize) {
            if (!isFamily(first, familySize)) return false;
            packets[merged] = parentOf(packets[first]);
            splits.packets[splits.count++] = packets[merged++];
        }
        count = merged;
        return true;
    }

    bool isRoot() const { return count == 1; }

 private:
    bool isFamily(std::size_t first, std::size_t size) const {
        const Packet parent = parentOf(packets[first]);
        for (std::size_t child = 0; child < size; ++child) {
            const Packet& packet = packets[first + child];
            if (!isSame(parentOf(packet), parent)) return false;
            if (childIndex(packet, dimensions) != static_cast<double>(child)) return false;
        }
        return true;
    }

    int dimensions;
    Packet* packets;
    std::size_t count = 0;
};

}  // namespace

std::uint64_t Basis::depth() const {
    double deepest = 0.0;
    for (const Packet& packet : rows) {
        if (std::isgreater(packet.level, deepest)) deepest = packet.level;
    }
    return static_cast<std::uint64_t>(std::min(deepest, largest32Bits + 1.0));
}

Failure checkEntries(const Basis& basis) {
    for (const Packet& packet : basis.rows) {
        if (auto failure = checkPacket(packet)) return failure;
    }
    return {};
}

Result<PacketList> findSplits(const Basis& basis) {
    const std::size_t rowCount = basis.rows.count;
    // A tiling that reaches a level has at least one packet more than levels.
    if (basis.depth() >= rowCount) return Code::InvalidPacketBasis;
    auto sorted = Array<Packet>::uninitialised(rowCount);
    auto memory = Array<Packet>::uninitialised(rowCount);
    PacketList splits = {Array<Packet>::uninitialised(rowCount)};
    if (!sorted || !memory || !splits.packets) return Code::OutOfMemory;
    std::copy(basis.rows.begin(), basis.rows.end(), sorted.data());
    std::sort(sorted.data(), sorted.data() + rowCount, SiblingOrder{basis.dimensions});
    const Packet* const end = std::unique(sorted.data(), sorted.data() + rowCount, isSame);

    Level level(basis, memory.data());
    const Packet* next = sorted.data();
    for (double j = next->level;; --j) {
        for (; next != end && next->level == j; ++next) level.add(*next);
        if (j == 0.0) break;
        if (!level.mergeFamilies(splits)) return Code::InvalidPacketBasis;
    }
    if (!level.isRoot()) return Code::InvalidPacketBasis;
    return splits;
}

bool removeRepeats(PacketList& list) {
    auto order = Array<std::size_t>::uninitialised(list.count);
    auto repeated = Array<bool>::zeroed(list.count);
    if (!order || !repeated) return false;
    std::iota(order.data(), order.data() + list.count, std::size_t{0});
    std::sort(order.data(), order.data() + list.count, [&list](std::size_t a, std::size_t b) {
        const auto key = [&list](std::size_t i) {
            return std::tuple(list[i].level, list[i].row, list[i].col, i);
        };
        return key(a) < key(b);
    });
    for (std::size_t i = 1; i < list.count; ++i)
        repeated[order[i]] = isSame(list[order[i - 1]], list[order[i]]);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < list.count; ++i) {
        if (!repeated[i]) list.packets[kept++] = list[i];
    }
    list.count = kept;
    return true;
}

}  // namespace undula
