#include "nodes/dds/wire/DdsSerialised.h"

#include <dds/ddsi/ddsi_serdata.h>

namespace Trovio::Nodes {

void DdsSerialisedUnref::operator()(ddsi_serdata* serialised) const
{
    ddsi_serdata_unref(serialised);
}

std::size_t sizeOf(const ddsi_serdata& serialised)
{
    return ddsi_serdata_size(&serialised);
}

bool readSample(const ddsi_serdata& serialised, void* sample)
{
    return ddsi_serdata_to_sample(&serialised, sample, nullptr, nullptr);
}

} // namespace Trovio::Nodes
