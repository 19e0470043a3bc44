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
/// All, for those too (their sample then holds nothing but a key). use must not throw.
enum class Take { Data, All };
template <Take what = Take::Data, class Use>
void takeSamples(dds_entity_t reader, Use&& use)
{
    std::array<void*, 32> samples{};
    std::array<dds_sample_info_t, 32> infos{};
    for (dds_return_t count = 1; count > 0;) {
        samples[0] = nullptr; // asks the library for a loan
        count = dds_take(reader, samples.data(), infos.data(), samples.size(), samples.size());
        for (std::size_t i = 0; count > 0 && i < static_cast<std::size_t>(count); ++i)
            if (what == Take::All || infos[i].valid_data)
                use(samples[i], infos[i]);
        if (count > 0)
            dds_return_loan(reader, samples.data(), count);
    }
}

/// Takes all that a reader has as it came over the wire, checked by the library: use(serialised, info) turns it into a
/// sample where it likes. Leaves out news of writers. use must not throw.
template <class Use>
void takeSerialised(dds_entity_t reader, Use&& use)
{
    std::array<ddsi_serdata*, 32> samples{};
    std::array<dds_sample_info_t, 32> infos{};
    for (dds_return_t count = 1; count > 0;) {
        count = dds_takecdr(reader, samples.data(), samples.size(), infos.data(), DDS_ANY_STATE);
        for (std::size_t i = 0; count > 0 && i < static_cast<std::size_t>(count); ++i) {
            if (infos[i].valid_data)
                use(*samples[i], infos[i]);
            ddsi_serdata_unref(samples[i]);
        }
    }
}

} // namespace Trovio::Nodes
