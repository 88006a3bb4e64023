-- The relations of a fleet's inventory for PostgreSQL, made from the table of parts. load-postgresql fills them.
BEGIN;
CREATE TABLE snapshot (
    snapshot bigint PRIMARY KEY,
    system text NOT NULL,
    facility text,
    time text NOT NULL,
    file text NOT NULL,
    hash text NOT NULL,
    complete integer NOT NULL,
    missing text NOT NULL
);
CREATE INDEX ON snapshot (system, time, complete);
CREATE TABLE part (
    snapshot bigint NOT NULL,
    system text NOT NULL,
    facility text,
    collected text,
    kind text NOT NULL,
    id text,
    within text,
    serial text,
    data jsonb NOT NULL
);
CREATE INDEX ON part (snapshot, kind);
CREATE INDEX ON part (serial);
CREATE INDEX ON part (id);
CREATE TABLE change (
    snapshot bigint NOT NULL,
    before bigint NOT NULL,
    system text NOT NULL,
    time text NOT NULL,
    change text NOT NULL,
    kind text NOT NULL,
    id text,
    old_id text,
    serial text,
    old_serial text,
    data jsonb NOT NULL
);
CREATE INDEX ON change (time);
CREATE INDEX ON change (serial);
CREATE UNLOGGED TABLE incoming (line jsonb NOT NULL);
CREATE VIEW latest AS SELECT DISTINCT ON (system) * FROM snapshot ORDER BY system, time DESC, complete DESC, snapshot DESC;
CREATE VIEW system AS SELECT snapshot, system, facility, collected, kind, id, within
    FROM part WHERE kind = 'system';
CREATE VIEW processorComplex AS SELECT snapshot, system, facility, collected, kind, id, within,
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'processorComplex';
CREATE VIEW controlCard AS SELECT snapshot, system, facility, collected, kind, id, within,
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level",
    data ->> 'image' AS "image",
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'controlCard';
CREATE VIEW ioEnclosure AS SELECT snapshot, system, facility, collected, kind, id, within,
    data ->> 'interfaces' AS "interfaces",
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'ioEnclosure';
CREATE VIEW deviceAdapter AS SELECT snapshot, system, facility, collected, kind, id, within,
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level",
    data ->> 'firmware' AS "firmware",
    data ->> 'interfaces' AS "interfaces",
    data ->> 'ccin' AS "ccin",
    data ->> 'image' AS "image",
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'deviceAdapter';
CREATE VIEW hostAdapter AS SELECT snapshot, system, facility, collected, kind, id, within,
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level",
    data ->> 'firmware' AS "firmware",
    data ->> 'interfaces' AS "interfaces",
    data ->> 'ccin' AS "ccin",
    data ->> 'image' AS "image",
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'hostAdapter';
CREATE VIEW rack AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    (data ->> 'rack_id')::bigint AS "rack_id",
    data ->> 'type_model' AS "type_model",
    "serial" AS "serial"
    FROM part WHERE kind = 'rack';
CREATE VIEW powerSupply AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level",
    data ->> 'firmware' AS "firmware"
    FROM part WHERE kind = 'powerSupply';
CREATE VIEW battery AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level",
    (data ->> 'remaining_life')::bigint AS "remaining_life"
    FROM part WHERE kind = 'battery';
CREATE VIEW powerController AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level",
    data ->> 'firmware' AS "firmware",
    data ->> 'feature' AS "feature"
    FROM part WHERE kind = 'powerController';
CREATE VIEW fanSenseCard AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level"
    FROM part WHERE kind = 'fanSenseCard';
CREATE VIEW fanTray AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    data ->> 'part_number' AS "part_number"
    FROM part WHERE kind = 'fanTray';
CREATE VIEW storageEnclosure AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    (data ->> 'enclosure')::bigint AS "enclosure",
    data ->> 'type_model' AS "type_model",
    "serial" AS "serial",
    data ->> 'feature' AS "feature",
    data ->> 'interfaces' AS "interfaces",
    data ->> 'image' AS "image",
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'storageEnclosure';
CREATE VIEW drive AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    (data ->> 'enclosure')::bigint AS "enclosure",
    (data ->> 'slot')::bigint AS "slot",
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level",
    data ->> 'firmware' AS "firmware",
    data ->> 'name' AS "name",
    data ->> 'manufacturer' AS "manufacturer",
    (data ->> 'capacity_mb')::bigint AS "capacity_mb",
    (data ->> 'rpm')::bigint AS "rpm",
    (data ->> 'interface_rate')::bigint AS "interface_rate",
    (data ->> 'array_site')::bigint AS "array_site",
    (data ->> 'position')::bigint AS "position",
    data ->> 'interface_type' AS "interface_type",
    (data ->> 'state')::bigint AS "state",
    data ->> 'image' AS "image",
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'drive';
CREATE VIEW interfaceCard AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    (data ->> 'enclosure')::bigint AS "enclosure",
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level",
    data ->> 'firmware' AS "firmware",
    data ->> 'image' AS "image",
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'interfaceCard';
CREATE VIEW baffle AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'rack')::bigint AS "rack",
    (data ->> 'enclosure')::bigint AS "enclosure",
    data ->> 'part_number' AS "part_number",
    data ->> 'image' AS "image",
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'baffle';
CREATE VIEW console AS SELECT snapshot, system, facility, collected, kind, id, within
    FROM part WHERE kind = 'console';
CREATE VIEW partition AS SELECT snapshot, system, facility, collected, kind, id, within,
    data ->> 'name' AS "name",
    data ->> 'pool' AS "pool",
    data ->> 'wwnn' AS "wwnn",
    data ->> 'firmware' AS "firmware",
    data ->> 'image' AS "image",
    (data ->> 'v0')::bigint AS "v0",
    (data ->> 'v1')::bigint AS "v1",
    (data ->> 'v2')::bigint AS "v2",
    (data ->> 'v3')::bigint AS "v3",
    (data ->> 'v4')::bigint AS "v4",
    (data ->> 'v5')::bigint AS "v5",
    (data ->> 'v6')::bigint AS "v6",
    (data ->> 'v7')::bigint AS "v7",
    (data ->> 'p0')::bigint AS "p0",
    (data ->> 'p1')::bigint AS "p1",
    (data ->> 'p2')::bigint AS "p2",
    (data ->> 'p3')::bigint AS "p3",
    (data ->> 'p4')::bigint AS "p4",
    (data ->> 'o0')::bigint AS "o0",
    (data ->> 'o1')::bigint AS "o1",
    (data ->> 'o2')::bigint AS "o2",
    (data ->> 'o3')::bigint AS "o3",
    (data ->> 'o4')::bigint AS "o4",
    (data ->> 'h0')::bigint AS "h0",
    (data ->> 'h1')::bigint AS "h1",
    (data ->> 'h2')::bigint AS "h2",
    (data ->> 'h3')::bigint AS "h3"
    FROM part WHERE kind = 'partition';
CREATE VIEW other AS SELECT snapshot, system, facility, collected, kind, id, within,
    data ->> 'name' AS "name",
    (data ->> 'rack')::bigint AS "rack",
    "serial" AS "serial",
    data ->> 'part_number' AS "part_number",
    data ->> 'ec_level' AS "ec_level",
    data ->> 'firmware' AS "firmware",
    data ->> 'image' AS "image",
    data -> 'partitions' AS "partitions"
    FROM part WHERE kind = 'other';
CREATE VIEW arraySite AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'number')::bigint AS "number",
    (data ->> 'array')::bigint AS "array",
    (data ->> 'position')::bigint AS "position",
    (data ->> 'da_pair')::bigint AS "da_pair",
    (data ->> 'capacity_mb')::bigint AS "capacity_mb",
    (data ->> 'rpm')::bigint AS "rpm",
    data ->> 'image' AS "image"
    FROM part WHERE kind = 'arraySite';
CREATE VIEW "array" AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'number')::bigint AS "number",
    data -> 'array_sites' AS "array_sites",
    (data ->> 'rank')::bigint AS "rank",
    "serial" AS "serial",
    data ->> 'configuration' AS "configuration",
    (data ->> 'position')::bigint AS "position",
    (data ->> 'da_pair')::bigint AS "da_pair",
    (data ->> 'capacity_mb')::bigint AS "capacity_mb",
    (data ->> 'rpm')::bigint AS "rpm",
    data ->> 'raid_type' AS "raid_type",
    data ->> 'image' AS "image"
    FROM part WHERE kind = 'array';
CREATE VIEW rank AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'number')::bigint AS "number",
    data -> 'arrays' AS "arrays",
    (data ->> 'pool')::bigint AS "pool",
    "serial" AS "serial",
    (data ->> 'segment_type')::bigint AS "segment_type",
    (data ->> 'segments')::bigint AS "segments",
    (data ->> 'rank_group')::bigint AS "rank_group",
    data ->> 'image' AS "image"
    FROM part WHERE kind = 'rank';
CREATE VIEW segmentPool AS SELECT snapshot, system, facility, collected, kind, id, within,
    (data ->> 'number')::bigint AS "number",
    data -> 'ranks' AS "ranks",
    (data ->> 'segment_type')::bigint AS "segment_type",
    (data ->> 'segments')::bigint AS "segments",
    (data ->> 'segment_limit')::bigint AS "segment_limit",
    (data ->> 'virtual_segments')::bigint AS "virtual_segments",
    (data ->> 'virtual_segment_limit')::bigint AS "virtual_segment_limit",
    (data ->> 'rank_group')::bigint AS "rank_group",
    data ->> 'image' AS "image"
    FROM part WHERE kind = 'segmentPool';
CREATE VIEW host AS SELECT snapshot, system, facility, collected, kind, id, within,
    data ->> 'description' AS "description",
    (data ->> 'ports')::bigint AS "ports",
    data ->> 'partition' AS "partition"
    FROM part WHERE kind = 'host';
COMMIT;
