// The plans of FFTW, which has a road for every length.
#include <fftw3.h>

#include <mutex>
#include <new>
#include <type_traits>

#include "efihost/host.h"
#include "fourier.h"

namespace efihost {

const char* fourierEngine() {
    return "fftw";
}

namespace {

fftw_complex* placeOf(FourierNumbers& numbers) {
    return reinterpret_cast<fftw_complex*>(numbers.data());
}

class InPlacePlan : public FourierPlan {
 public:
    InPlacePlan(std::size_t n, bool inverse) {
        // One planner serves the process: others in it may plan at the same time, or a host may end.
        static std::once_flag once;
        std::call_once(once, fftw_make_planner_thread_safe);
        // Estimated, not measured: measuring a length takes up to seconds, and what it chooses, and
        // with it the last bits of results, differs from run to run.
        FourierNumbers numbers(n);
        plan_.reset(fftw_plan_dft_1d(static_cast<int>(n), placeOf(numbers), placeOf(numbers),
                                     inverse ? FFTW_BACKWARD : FFTW_FORWARD, FFTW_ESTIMATE));
        if (!plan_) throw std::bad_alloc();
    }

    // All rooms are aligned alike, as FFTW asks of the places for which a plan is used again.
    void transform(FourierRoom& room) const override {
        fftw_execute_dft(plan_.get(), placeOf(room.numbers), placeOf(room.numbers));
    }

 private:
    struct Destroy {
        void operator()(fftw_plan plan) const { fftw_destroy_plan(plan); }
    };
    std::unique_ptr<std::remove_pointer_t<fftw_plan>, Destroy> plan_;
};

}  // namespace

std::unique_ptr<FourierPlan> makeFourierPlan(std::size_t n, bool inverse) {
    return std::make_unique<InPlacePlan>(n, inverse);
}

}  // namespace efihost
