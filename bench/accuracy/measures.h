// How far the pack's arithmetic is from the same sums in a wider type, in units of 2^-53: the norm of the
// difference divided by the norm of what is expected. Results are those of whole calls; what is expected
// comes from the loops of tests/support/plain_steps.h, and from definitions written out here, in long double.
#pragma once

#include <string>
#include <vector>

#include "efihost/host.h"
#include "support/filter_pair.h"

namespace accuracy {

using efihost::Value;
using plain::Signal;
using Wide = long double;
using WideSignal = plain::SignalOf<Wide>;

inline constexpr double unit = 0x1p-53;

// A built-in filter.
struct Wavelet {
    std::string family;
    std::string name;
    Value filter;
    FilterPair pair;
    bool isSymmetric = false;
    bool hasInterval = false;

    int taps() const { return static_cast<int>(pair.analysis.size()); }
};

// A treatment of the ends: the letter that follows the names of its functions, and its plain loops.
struct Treatment {
    std::string letter;
    plain::StepOf<Wide>* analysis;
    plain::StepOf<Wide>* synthesis;

    bool takes(const Wavelet& wavelet) const;
    // The deepest level of sides that are powers of two, the shorter one of the given length; -1 for none.
    int deepest(const Wavelet& wavelet, int side) const;
};
extern const Treatment treatments[3];

// Data of one column is a signal.
struct Shape {
    int rows;
    int cols;
    int levels;
};

struct Errors {
    double forward = 0.0;
    double inverse = 0.0;
    double roundTrip = 0.0;
};

// Of local cosines, with the bell of the pack or with the same one as a user's.
enum class BellOf { Pack, User };

// How far the tabulated scaling function is from the limit function, at most: at the points where the table
// is read, and where its entries belong by their first moment. Negative where there is no limit.
struct LimitDistance {
    double where = -1.0;
    double shifted = -1.0;
};

class Measures {
 public:
    explicit Measures(const char* packPath);

    std::vector<Wavelet> wavelets();

    Errors transform(const Treatment& treatment, const Wavelet& wavelet, const Shape& shape);
    // The deepest level of a table, and back from its packets.
    Errors packets(const Treatment& treatment, const Wavelet& wavelet, const Shape& shape);
    // A packet function at points of its support, against the same table and relations.
    double function(const Wavelet& wavelet, bool dual, unsigned packet, int points);
    // The last level of a table of local cosines; of long signals some coefficients, chosen at random.
    Errors cosines(BellOf bell, const Shape& shape);
    // One DCT-IV of any length.
    double dct(int length);

 private:
    Value call(const std::string& name, const std::vector<Value>& arguments);
    Wavelet orthonormalWavelet(const char* family, const char* letter, int number);
    Wavelet spline(int m, int n);

    efihost::Pack pack_;
    efihost::Host host_;
};

// The largest relative error of the built-in bell and its complement, at the midpoints of N steps.
double bellError(int halfLength);

LimitDistance limitDistance(const Wavelet& wavelet, bool dual);

// How far long double itself is from four times as many digits as a double has: a transform and a packet
// table of the wavelet.
double errorOfWide(const Treatment& treatment, const Wavelet& wavelet, const Shape& shape);

}  // namespace accuracy
