-- live memory at every marker and the change since the one before
WITH {{markers}}
SELECT t.run_id, t.main_pid, t.marker, t.time, t.type, t.subtype, t.marker_text, t.from_rec, t.rec,
  {{live_at_marker}} AS live_bytes,
  {{live_at_marker}} - {{live_at_marker_before}} AS live_change
FROM t
