#pragma once

#include <array>
#include <dds/dds.h>
#include <memory>

namespace Trovio::Nodes {

struct DdsListenerDelete {
    void operator()(dds_listener_t* listener) const { dds_delete_listener(listener); }
};
using DdsListener = std::unique_ptr<dds_listener_t, DdsListenerDelete>;

/// Takes all that a reader has, calling use(sample, info) for each one that is more than news of its writer, or, with
/// All, for those too (their sample then holds nothing but a key), or, with Gone, only for those of writers that are no
/// more. use must not throw.
enum class Take { Data, All, Gone };
template <Take what = Take::Data, class Use>
void takeSamples(dds_entity_t reader, Use&& use)
{
    constexpr std::uint32_t gone = DDS_ANY_SAMPLE_STATE | DDS_ANY_VIEW_STATE | DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE |
                                   DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE;
    std::array<void*, 32> samples{};
    std::array<dds_sample_info_t, 32> infos{};
    for (dds_return_t count = 1; count > 0;) {
        samples[0] = nullptr; // asks the library for a loan
        count = dds_take_mask(reader, samples.data(), infos.data(), samples.size(), samples.size(),
                              what == Take::Gone ? gone : DDS_ANY_STATE);
        for (std::size_t i = 0; count > 0 && i < static_cast<std::size_t>(count); ++i)
            if (what != Take::Data || infos[i].valid_data)
                use(samples[i], infos[i]);
        if (count > 0)
            dds_return_loan(reader, samples.data(), count);
    }
}

} // namespace Trovio::Nodes
