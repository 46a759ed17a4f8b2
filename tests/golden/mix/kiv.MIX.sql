USE KIV
DECLARE @RUNID varchar(10)
DECLARE @Path varchar(100)

SET @RUNID = 'MIX'
SET @Path = '$(ScriptDir)\'

execute Do_Import_Kiv_Csv_File_Memory @Path, 'MIX', 'memory1', 'memory', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'sbrk1', 'sbrk', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'queryevents1', 'queryevents', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'marker1', 'marker', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'freemem1', 'freemem', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'arena1', 'arena', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'arcs1', 'arcs', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'symbols1', 'symbols', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'flowdata1', 'flowdata', '1', '<<>>';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'flow1', 'flow', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'process1', 'process', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'hashloc1', 'hashloc', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'malid1', 'malid', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'color1', 'color', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'queries1', 'queries', '1', '<<>>';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'runs1', 'runs', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'objects1', 'objects', '1';
execute Do_Import_Kiv_Csv_File @Path, 'MIX', 'functions1', 'functions', '1';
