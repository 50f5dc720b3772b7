#include "packets/best_basis_search.h"

#include <cmath>

#include "dwt/subband_layout.h"

namespace undula {

namespace {

// Every second bit of a number, from bit 0 on.
std::uint64_t everySecondBit(std::uint64_t bits) {
    std::uint64_t gathered = 0;
    for (int bit = 0; bit < 32; ++bit) gathered |= (bits >> (2 * bit) & 1) << bit;
    return gathered;
}

std::uint64_t spread(std::uint64_t bits) {
    std::uint64_t spreadOut = 0;
    for (int bit = 0; bit < 32; ++bit) spreadOut |= (bits >> bit & 1) << (2 * bit);
    return spreadOut;
}

// The tree of a table's packets. Node i of a level has the children arity * i + 0, 1, ... of the next:
// of a signal they are the positions themselves, of an image the bits of row and column position
// alternate, the row's before the column's.
struct Tree {
    bool signal;

    std::uint64_t arity() const { return signal ? 2 : 4; }
    std::uint64_t nodesOf(std::uint32_t level) const {
        return std::uint64_t{1} << (signal ? level : 2 * level);
    }
    // Nodes of all levels before this one.
    std::uint64_t nodesBefore(std::uint32_t level) const { return (nodesOf(level) - 1) / (arity() - 1); }
    std::uint64_t row(std::uint64_t node) const { return signal ? node : everySecondBit(node >> 1); }
    std::uint64_t col(std::uint64_t node) const { return signal ? 0 : everySecondBit(node); }
    std::uint64_t node(std::uint64_t row, std::uint64_t col) const {
        return signal ? row : spread(row) << 1 | spread(col);
    }
};

// What becomes of a packet.
enum class Fate : std::uint8_t {
    Split,    // its children are used
    Kept,     // it is of the basis
    Covered,  // a packet above it is of the basis
};

class Search {
 public:
    Search(const TableView& packetTable, double_to_double_func& costFunction, const Poll& interruption)
        : table(packetTable), tree{packetTable.data().isSignal()}, cost(costFunction), poll(interruption) {}

    Result<PacketList> run() {
        const std::uint64_t nodes = tree.nodesBefore(table.depth + 1);
        costs = Array<double>::uninitialised(nodes);
        fates = Array<Fate>::uninitialised(nodes);
        if (!costs || !fates) return Code::OutOfMemory;
        if (!visitDeepest()) return Code::Interrupted;
        for (std::uint32_t level = table.depth; level-- > 0;) {
            if (!visit(level)) return Code::Interrupted;
        }
        return collect();
    }

 private:
    // The sum of the cost function over a packet's coefficients, row by row.
    double costOf(std::uint32_t level, std::uint64_t node) {
        const Block& data = table.levels[level];
        const PacketIndex packet = {level, tree.row(node), tree.col(node)};
        const auto [rows, cols] = packetPlace(data.rows, data.cols, packet);
        double sum = 0.0;
        for (std::uint64_t row = rows.start; row < rows.start + rows.length; ++row) {
            for (std::uint64_t col = cols.start; col < cols.start + cols.length; ++col) {
                sum += cost.evaluate(data.column(col)[row]);
            }
        }
        return sum;
    }

    std::size_t at(std::uint32_t level, std::uint64_t node) const {
        return static_cast<std::size_t>(tree.nodesBefore(level) + node);
    }

    void keep(std::uint32_t level, std::uint64_t node) {
        costs[at(level, node)] = costOf(level, node);
        fates[at(level, node)] = Fate::Kept;
    }

    bool visitDeepest() {
        const std::uint64_t rows = std::uint64_t{1} << table.depth;
        const std::uint64_t cols = tree.signal ? 1 : rows;
        for (std::uint64_t row = 0; row < rows; ++row) {
            if (poll()) return false;
            for (std::uint64_t col = 0; col < cols; ++col) keep(table.depth, tree.node(row, col));
        }
        return true;
    }

    // Compares the packets of a level with their children.
    bool visit(std::uint32_t level) {
        if (!tree.signal && poll()) return false;
        for (std::uint64_t node = 0; node < tree.nodesOf(level); ++node) {
            if (tree.signal && poll()) return false;
            keep(level, node);
            // Volatile: a register may hold more digits than a double, and decide a tie by them.
            const volatile double own = costs[at(level, node)];
            volatile double sum = 0.0;
            for (std::uint64_t child = 0; child < tree.arity(); ++child) {
                sum = sum + costs[at(level + 1, tree.arity() * node + child)];
            }
            // Quietly: a cost of NaN lets no parent win.
            if (!std::isgreater(sum, own)) {
                costs[at(level, node)] = sum;
                fates[at(level, node)] = Fate::Split;
            }
        }
        return true;
    }

    // Covers what stands below a kept packet, and counts what is kept then.
    std::size_t settle() {
        std::size_t count = 0;
        for (std::uint32_t level = 0; level <= table.depth; ++level) {
            for (std::uint64_t node = 0; node < tree.nodesOf(level); ++node) {
                const bool covered = level > 0 && fates[at(level - 1, node / tree.arity())] != Fate::Split;
                if (covered) fates[at(level, node)] = Fate::Covered;
                count += fates[at(level, node)] == Fate::Kept;
            }
        }
        return count;
    }

    Result<PacketList> collect() {
        PacketList basis = {Array<Packet>::uninitialised(settle())};
        if (!basis.packets) return Code::OutOfMemory;
        for (std::uint32_t level = 0; level <= table.depth; ++level) {
            for (std::uint64_t node = 0; node < tree.nodesOf(level); ++node) {
                if (fates[at(level, node)] != Fate::Kept) continue;
                basis.packets[basis.count++] = {static_cast<double>(level),
                                                static_cast<double>(tree.row(node)),
                                                static_cast<double>(tree.col(node))};
            }
        }
        return basis;
    }

    const TableView& table;
    Tree tree;
    double_to_double_func& cost;
    const Poll& poll;
    Array<double> costs;
    Array<Fate> fates;
};

}  // namespace

Result<PacketList> searchBestBasis(const TableView& table, double_to_double_func& cost, const Poll& poll) {
    return Search(table, cost, poll).run();
}

}  // namespace undula
