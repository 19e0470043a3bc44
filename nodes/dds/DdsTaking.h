#pragma once

#include <array>
#include <dds/dds.h>
#include <dds/ddsi/ddsi_serdata.h>
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

struct DdsSerialisedUnref {
    void operator()(ddsi_serdata* serialised) const { ddsi_serdata_unref(serialised); }
};
/// A sample as it came over the wire, checked by the library.
using DdsSerialised = std::unique_ptr<ddsi_serdata, DdsSerialisedUnref>;

/// Takes all that a reader has: use(serialised, info) turns it into a sample where and when it likes. Leaves out news
/// of writers. use must not throw.
template <class Use>
void takeSerialised(dds_entity_t reader, Use&& use)
{
    std::array<ddsi_serdata*, 32> samples{};
    std::array<dds_sample_info_t, 32> infos{};
    for (dds_return_t count = 1; count > 0;) {
        count = dds_takecdr(reader, samples.data(), samples.size(), infos.data(), DDS_ANY_STATE);
        for (std::size_t i = 0; count > 0 && i < static_cast<std::size_t>(count); ++i) {
            DdsSerialised serialised(samples[i]);
            if (infos[i].valid_data)
                use(std::move(serialised), infos[i]);
        }
    }
}

} // namespace Trovio::Nodes
