#pragma once

#include <array>
#include <dds/dds.h>
#include <memory>

struct ddsi_serdata; // the header with it has common names that are not the library's own

namespace Trovio::Nodes {

struct DdsSerialisedUnref {
    void operator()(ddsi_serdata* serialised) const;
};
/// A sample as it came over the wire, checked by the library.
using DdsSerialised = std::unique_ptr<ddsi_serdata, DdsSerialisedUnref>;

/// Bytes on the wire.
std::size_t sizeOf(const ddsi_serdata& serialised);

/// Makes a sample of it; what the sample refers to already is written over where there is room. False if it is no
/// sample of its type.
bool readSample(const ddsi_serdata& serialised, void* sample);

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
