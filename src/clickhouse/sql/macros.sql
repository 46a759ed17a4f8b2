-- Texts that several views share. A line "-- name:" begins a macro.

-- stored:
import IN (SELECT import FROM newest_import)

-- The last five runs of each program that has so many.

-- last_runs:
(program, import) GLOBAL IN (
      SELECT program, arrayJoin(arraySlice(arraySort(groupUniqArray(import)), -5)) AS last_import
      FROM trace_everywhere WHERE {{stored}}
      GROUP BY program HAVING length(groupUniqArray(import)) >= 5
    )

-- figures:
  sum(made_blocks) AS allocated_blocks,
  sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes) AS allocated_tot_bytes,
  sum(freed_blocks) AS freed_blocks,
  sum(freed_bytes) AS freed_bytes,
  sum(freed_tot_bytes) AS freed_tot_bytes,
  sum(leaked_blocks) AS leaked_blocks,
  sum(leaked_bytes) AS leaked_bytes,
  sum(leaked_tot_bytes) AS leaked_tot_bytes,
  sum(reset_blocks) AS reset_blocks,
  sum(reset_bytes) AS reset_bytes,
  sum(reset_tot_bytes) AS reset_tot_bytes,
  sum(released_blocks) AS released_blocks,
  sum(released_bytes) AS released_bytes,
  sum(released_tot_bytes) AS released_tot_bytes,
  sum(live_blocks) AS live_blocks,
  sum(live_bytes) AS live_bytes,
  sum(live_tot_bytes) AS live_tot_bytes,
  sum(peak_blocks) AS peak_blocks,
  sum(peak_bytes) AS peak_bytes,
  sum(peak_tot_bytes) AS peak_tot_bytes,
  sum(temporary_blocks) AS temporary_blocks,
  sum(temporary_bytes) AS temporary_bytes,
  sum(temporary_tot_bytes) AS temporary_tot_bytes,
  sum(resizes) AS resizes

-- totals:
  total_allocated_blocks AS allocated_blocks,
  total_allocated_bytes AS allocated_bytes,
  total_allocated_tot_bytes AS allocated_tot_bytes,
  total_freed_blocks AS freed_blocks,
  total_freed_bytes AS freed_bytes,
  total_freed_tot_bytes AS freed_tot_bytes,
  total_leaked_blocks AS leaked_blocks,
  total_leaked_bytes AS leaked_bytes,
  total_leaked_tot_bytes AS leaked_tot_bytes,
  total_reset_blocks AS reset_blocks,
  total_reset_bytes AS reset_bytes,
  total_reset_tot_bytes AS reset_tot_bytes,
  total_released_blocks AS released_blocks,
  total_released_bytes AS released_bytes,
  total_released_tot_bytes AS released_tot_bytes,
  total_live_blocks AS live_blocks,
  total_live_bytes AS live_bytes,
  total_live_tot_bytes AS live_tot_bytes,
  total_peak_blocks AS peak_blocks,
  total_peak_bytes AS peak_bytes,
  total_peak_tot_bytes AS peak_tot_bytes,
  total_temporary_blocks AS temporary_blocks,
  total_temporary_bytes AS temporary_bytes,
  total_temporary_tot_bytes AS temporary_tot_bytes,
  total_resizes AS resizes

-- path_figures:
  numbers[5] AS allocated_blocks,
  numbers[6] AS allocated_bytes,
  numbers[7] AS allocated_tot_bytes,
  numbers[8] AS freed_blocks,
  numbers[9] AS freed_bytes,
  numbers[10] AS freed_tot_bytes,
  numbers[11] AS leaked_blocks,
  numbers[12] AS leaked_bytes,
  numbers[13] AS leaked_tot_bytes,
  numbers[14] AS reset_blocks,
  numbers[15] AS reset_bytes,
  numbers[16] AS reset_tot_bytes,
  numbers[17] AS released_blocks,
  numbers[18] AS released_bytes,
  numbers[19] AS released_tot_bytes,
  numbers[20] AS live_blocks,
  numbers[21] AS live_bytes,
  numbers[22] AS live_tot_bytes,
  numbers[23] AS peak_blocks,
  numbers[24] AS peak_bytes,
  numbers[25] AS peak_tot_bytes,
  numbers[26] AS temporary_blocks,
  numbers[27] AS temporary_bytes,
  numbers[28] AS temporary_tot_bytes,
  numbers[29] AS resizes

-- kind:
if(no_free = 0, 'with free', 'no free') AS kind

-- list_kind:
if(numbers[2] = 0, 'with free', 'no free') AS kind

-- from_power:
if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(1), toUInt8(greatest(numbers[4], 0))))

-- to_power:
if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(2), toUInt8(greatest(numbers[4], 0))) - 1)
