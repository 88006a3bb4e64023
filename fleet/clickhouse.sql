-- The relations of a fleet's inventory for ClickHouse, made from the table of parts: on every server of a cluster
-- that the servers' configuration calls fleet. Rows go to the shard of their system. load-clickhouse fills them. Whoever
-- asks needs a profile with distributed_product_mode = global.
CREATE TABLE snapshot_shard (
    snapshot Int64,
    system String,
    facility Nullable(String),
    time String,
    file String,
    hash String,
    complete Int8,
    missing String
) ENGINE = MergeTree ORDER BY (system, time);
CREATE TABLE change_shard (
    snapshot Int64,
    before Int64,
    system String,
    time String,
    change String,
    kind String,
    id Nullable(String),
    old_id Nullable(String),
    serial Nullable(String),
    old_serial Nullable(String),
    data String
) ENGINE = MergeTree ORDER BY (kind, system, time);
CREATE TABLE part_shard (
    system String,
    facility Nullable(String),
    collected String,
    kind String,
    id Nullable(String),
    within Nullable(String),
    "partitions" Array(String),
    "serial" Nullable(String),
    "part_number" Nullable(String),
    "ec_level" Nullable(String),
    "image" Nullable(String),
    "interfaces" Nullable(String),
    "firmware" Nullable(String),
    "ccin" Nullable(String),
    "rack" Nullable(Int64),
    "rack_id" Nullable(Int64),
    "type_model" Nullable(String),
    "remaining_life" Nullable(Int64),
    "feature" Nullable(String),
    "enclosure" Nullable(Int64),
    "slot" Nullable(Int64),
    "name" Nullable(String),
    "manufacturer" Nullable(String),
    "capacity_mb" Nullable(Int64),
    "rpm" Nullable(Int64),
    "interface_rate" Nullable(Int64),
    "array_site" Nullable(Int64),
    "position" Nullable(Int64),
    "interface_type" Nullable(String),
    "state" Nullable(Int64),
    "pool" Nullable(String),
    "wwnn" Nullable(String),
    "v0" Nullable(Int64),
    "v1" Nullable(Int64),
    "v2" Nullable(Int64),
    "v3" Nullable(Int64),
    "v4" Nullable(Int64),
    "v5" Nullable(Int64),
    "v6" Nullable(Int64),
    "v7" Nullable(Int64),
    "p0" Nullable(Int64),
    "p1" Nullable(Int64),
    "p2" Nullable(Int64),
    "p3" Nullable(Int64),
    "p4" Nullable(Int64),
    "o0" Nullable(Int64),
    "o1" Nullable(Int64),
    "o2" Nullable(Int64),
    "o3" Nullable(Int64),
    "o4" Nullable(Int64),
    "h0" Nullable(Int64),
    "h1" Nullable(Int64),
    "h2" Nullable(Int64),
    "h3" Nullable(Int64),
    "number" Nullable(Int64),
    "array" Nullable(Int64),
    "da_pair" Nullable(Int64),
    "array_sites" Array(Int64),
    "rank" Nullable(Int64),
    "configuration" Nullable(String),
    "raid_type" Nullable(String),
    "arrays" Array(Int64),
    "segment_type" Nullable(Int64),
    "segments" Nullable(Int64),
    "rank_group" Nullable(Int64),
    "ranks" Array(Int64),
    "segment_limit" Nullable(Int64),
    "virtual_segments" Nullable(Int64),
    "virtual_segment_limit" Nullable(Int64),
    "description" Nullable(String),
    "ports" Nullable(Int64),
    "partition" Nullable(String),
    snapshot Int64
) ENGINE = MergeTree ORDER BY (kind, system, snapshot);
CREATE TABLE incoming AS part_shard ENGINE = MergeTree ORDER BY (system, collected);
CREATE TABLE snapshot AS snapshot_shard ENGINE = Distributed(fleet, currentDatabase(), snapshot_shard, cityHash64(system));
CREATE TABLE part AS part_shard ENGINE = Distributed(fleet, currentDatabase(), part_shard, cityHash64(system));
CREATE TABLE change AS change_shard ENGINE = Distributed(fleet, currentDatabase(), change_shard, cityHash64(system));
CREATE VIEW latest AS SELECT * FROM snapshot WHERE snapshot GLOBAL IN (
    SELECT argMax(snapshot, concat(time, toString(complete))) FROM snapshot GROUP BY system);
CREATE VIEW system AS SELECT snapshot, system, facility, collected, kind, id, within
    FROM part WHERE kind = 'system';
CREATE VIEW processorComplex AS SELECT snapshot, system, facility, collected, kind, id, within,
    "partitions" AS "partitions"
    FROM part WHERE kind = 'processorComplex';
CREATE VIEW controlCard AS SELECT snapshot, system, facility, collected, kind, id, within,
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level",
    "image" AS "image",
    "partitions" AS "partitions"
    FROM part WHERE kind = 'controlCard';
CREATE VIEW ioEnclosure AS SELECT snapshot, system, facility, collected, kind, id, within,
    "interfaces" AS "interfaces",
    "partitions" AS "partitions"
    FROM part WHERE kind = 'ioEnclosure';
CREATE VIEW deviceAdapter AS SELECT snapshot, system, facility, collected, kind, id, within,
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level",
    "firmware" AS "firmware",
    "interfaces" AS "interfaces",
    "ccin" AS "ccin",
    "image" AS "image",
    "partitions" AS "partitions"
    FROM part WHERE kind = 'deviceAdapter';
CREATE VIEW hostAdapter AS SELECT snapshot, system, facility, collected, kind, id, within,
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level",
    "firmware" AS "firmware",
    "interfaces" AS "interfaces",
    "ccin" AS "ccin",
    "image" AS "image",
    "partitions" AS "partitions"
    FROM part WHERE kind = 'hostAdapter';
CREATE VIEW rack AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "rack_id" AS "rack_id",
    "type_model" AS "type_model",
    "serial" AS "serial"
    FROM part WHERE kind = 'rack';
CREATE VIEW powerSupply AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level",
    "firmware" AS "firmware"
    FROM part WHERE kind = 'powerSupply';
CREATE VIEW battery AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level",
    "remaining_life" AS "remaining_life"
    FROM part WHERE kind = 'battery';
CREATE VIEW powerController AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level",
    "firmware" AS "firmware",
    "feature" AS "feature"
    FROM part WHERE kind = 'powerController';
CREATE VIEW fanSenseCard AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level"
    FROM part WHERE kind = 'fanSenseCard';
CREATE VIEW fanTray AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "part_number" AS "part_number"
    FROM part WHERE kind = 'fanTray';
CREATE VIEW storageEnclosure AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "enclosure" AS "enclosure",
    "type_model" AS "type_model",
    "serial" AS "serial",
    "feature" AS "feature",
    "interfaces" AS "interfaces",
    "image" AS "image",
    "partitions" AS "partitions"
    FROM part WHERE kind = 'storageEnclosure';
CREATE VIEW drive AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "enclosure" AS "enclosure",
    "slot" AS "slot",
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level",
    "firmware" AS "firmware",
    "name" AS "name",
    "manufacturer" AS "manufacturer",
    "capacity_mb" AS "capacity_mb",
    "rpm" AS "rpm",
    "interface_rate" AS "interface_rate",
    "array_site" AS "array_site",
    "position" AS "position",
    "interface_type" AS "interface_type",
    "state" AS "state",
    "image" AS "image",
    "partitions" AS "partitions"
    FROM part WHERE kind = 'drive';
CREATE VIEW interfaceCard AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "enclosure" AS "enclosure",
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level",
    "firmware" AS "firmware",
    "image" AS "image",
    "partitions" AS "partitions"
    FROM part WHERE kind = 'interfaceCard';
CREATE VIEW baffle AS SELECT snapshot, system, facility, collected, kind, id, within,
    "rack" AS "rack",
    "enclosure" AS "enclosure",
    "part_number" AS "part_number",
    "image" AS "image",
    "partitions" AS "partitions"
    FROM part WHERE kind = 'baffle';
CREATE VIEW console AS SELECT snapshot, system, facility, collected, kind, id, within
    FROM part WHERE kind = 'console';
CREATE VIEW partition AS SELECT snapshot, system, facility, collected, kind, id, within,
    "name" AS "name",
    "pool" AS "pool",
    "wwnn" AS "wwnn",
    "firmware" AS "firmware",
    "image" AS "image",
    "v0" AS "v0",
    "v1" AS "v1",
    "v2" AS "v2",
    "v3" AS "v3",
    "v4" AS "v4",
    "v5" AS "v5",
    "v6" AS "v6",
    "v7" AS "v7",
    "p0" AS "p0",
    "p1" AS "p1",
    "p2" AS "p2",
    "p3" AS "p3",
    "p4" AS "p4",
    "o0" AS "o0",
    "o1" AS "o1",
    "o2" AS "o2",
    "o3" AS "o3",
    "o4" AS "o4",
    "h0" AS "h0",
    "h1" AS "h1",
    "h2" AS "h2",
    "h3" AS "h3"
    FROM part WHERE kind = 'partition';
CREATE VIEW other AS SELECT snapshot, system, facility, collected, kind, id, within,
    "name" AS "name",
    "rack" AS "rack",
    "serial" AS "serial",
    "part_number" AS "part_number",
    "ec_level" AS "ec_level",
    "firmware" AS "firmware",
    "image" AS "image",
    "partitions" AS "partitions"
    FROM part WHERE kind = 'other';
CREATE VIEW arraySite AS SELECT snapshot, system, facility, collected, kind, id, within,
    "number" AS "number",
    "array" AS "array",
    "position" AS "position",
    "da_pair" AS "da_pair",
    "capacity_mb" AS "capacity_mb",
    "rpm" AS "rpm",
    "image" AS "image"
    FROM part WHERE kind = 'arraySite';
CREATE VIEW "array" AS SELECT snapshot, system, facility, collected, kind, id, within,
    "number" AS "number",
    "array_sites" AS "array_sites",
    "rank" AS "rank",
    "serial" AS "serial",
    "configuration" AS "configuration",
    "position" AS "position",
    "da_pair" AS "da_pair",
    "capacity_mb" AS "capacity_mb",
    "rpm" AS "rpm",
    "raid_type" AS "raid_type",
    "image" AS "image"
    FROM part WHERE kind = 'array';
CREATE VIEW rank AS SELECT snapshot, system, facility, collected, kind, id, within,
    "number" AS "number",
    "arrays" AS "arrays",
    toInt64OrNull(assumeNotNull("pool")) AS "pool",
    "serial" AS "serial",
    "segment_type" AS "segment_type",
    "segments" AS "segments",
    "rank_group" AS "rank_group",
    "image" AS "image"
    FROM part WHERE kind = 'rank';
CREATE VIEW segmentPool AS SELECT snapshot, system, facility, collected, kind, id, within,
    "number" AS "number",
    "ranks" AS "ranks",
    "segment_type" AS "segment_type",
    "segments" AS "segments",
    "segment_limit" AS "segment_limit",
    "virtual_segments" AS "virtual_segments",
    "virtual_segment_limit" AS "virtual_segment_limit",
    "rank_group" AS "rank_group",
    "image" AS "image"
    FROM part WHERE kind = 'segmentPool';
CREATE VIEW host AS SELECT snapshot, system, facility, collected, kind, id, within,
    "description" AS "description",
    "ports" AS "ports",
    "partition" AS "partition"
    FROM part WHERE kind = 'host';
