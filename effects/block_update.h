// One pass over a block of instances: clocks, motion, records.
#pragma once
#include "effects/instance_store.h"

namespace sparkrig {

/// Whether all blocks and records together stay in the processor's caches.
enum class Storing { InCache, BeyondCache };

/// Moves the clocks of the first `count` instances on by `step` seconds and, where asked, writes their records. True
/// when the life of one is over; its record then means nothing.
bool UpdateBlock(const SubEffect& sub, InstanceBlock& block, int count, float step, bool evaluate, Storing storing,
                 DrawRecord* records);

/// Writes the records of the instances from `first` to `end`. One that is not born takes the place where it was
/// started.
void WriteRecords(const SubEffect& sub, const InstanceBlock& block, int first, int end, DrawRecord* records);

/// DrawRecord::size of an instance of this scale.
float RecordSize(SubEffectKind kind, const D3DXVECTOR3& scale);
/// Whether the life of the instance at a place is over.
bool IsDead(const SubEffect& sub, const InstanceBlock& block, int place);

}   // namespace sparkrig
