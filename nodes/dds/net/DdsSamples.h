#pragma once

#include <array>
#include <dds/dds.h>
#include <memory>

namespace Trovio::Nodes {

struct DdsListenerDelete {
    void operator()(dds_listener_t* listener) const { dds_delete_listener(listener); }
};
using DdsListener = std::unique_ptr<dds_listener_t, DdsListenerDelete>;

/// Samples that a reader lends at once. Each call has room for all of them, even one that wants a single sample: the
/// library (0.10.2) keeps the largest loan for the next call and then writes all its pointers, whatever maximum that
/// call names.
constexpr std::uint32_t maxLoan = 32;
struct DdsLoan {
    std::array<void*, maxLoan> _samples{}; // null in front asks the library for a loan
    std::array<dds_sample_info_t, maxLoan> _infos{};
};

/// Takes all that a reader has, calling use(sample, info) for each one that is more than news of its writer, or, with
/// All, for those too (their sample then holds nothing but a key), or, with Gone, only for those of writers that are no
/// more. use must not throw.
enum class Take { Data, All, Gone };
template <Take what = Take::Data, class Use>
void takeSamples(dds_entity_t reader, Use&& use)
{
    constexpr std::uint32_t gone = DDS_ANY_SAMPLE_STATE | DDS_ANY_VIEW_STATE | DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE |
                                   DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE;
    for (dds_return_t count = 1; count > 0;) {
        DdsLoan loan;
        count = dds_take_mask(reader, loan._samples.data(), loan._infos.data(), maxLoan, maxLoan,
                              what == Take::Gone ? gone : DDS_ANY_STATE);
        for (std::size_t i = 0; count > 0 && i < static_cast<std::size_t>(count); ++i)
            if (what != Take::Data || loan._infos[i].valid_data)
                use(loan._samples[i], loan._infos[i]);
        if (count > 0)
            dds_return_loan(reader, loan._samples.data(), count);
    }
}

/// Calls use(sample, info) with what a reader knows of one instance, or else of the first maxLoan ones, and leaves
/// it there. use must not throw.
template <class Use>
void readSamples(dds_entity_t reader, dds_instance_handle_t instance, Use&& use)
{
    DdsLoan loan;
    void** const samples = loan._samples.data();
    dds_sample_info_t* const infos = loan._infos.data();
    const dds_return_t count = instance == DDS_HANDLE_NIL
                                   ? dds_read(reader, samples, infos, maxLoan, maxLoan)
                                   : dds_read_instance(reader, samples, infos, maxLoan, maxLoan, instance);
    for (std::size_t i = 0; count > 0 && i < static_cast<std::size_t>(count); ++i)
        if (infos[i].valid_data)
            use(samples[i], infos[i]);
    if (count > 0)
        dds_return_loan(reader, samples, count);
}

} // namespace Trovio::Nodes
