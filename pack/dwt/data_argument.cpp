#include "dwt/data_argument.h"

namespace undula {

bool admitsSides(const BoundaryTreatment& boundary, const FilterBank& bank, const aMatrix* data,
                 std::uint64_t levels) {
    const auto admits = [&](int side) {
        return boundary.admits(bank, static_cast<std::uint64_t>(side), levels);
    };
    return admits(data->rows) && (data->cols == 1 || admits(data->cols));
}

Block blockOf(const aMatrix* data, const Array<double>& copy) {
    return {copy.data(), data->rows, static_cast<std::uint32_t>(data->rows),
            static_cast<std::uint32_t>(data->cols)};
}

Failure stepFailure(Code code, Code tooShort, int position) {
    switch (code) {
        case Code::InvalidLevel:
            return {tooShort, position};
        case Code::None:
        case Code::OutOfMemory:
        case Code::Interrupted:
            return failureAt(code, 0);
        default:
            return {Code::Unknown, 0};
    }
}

}  // namespace undula
