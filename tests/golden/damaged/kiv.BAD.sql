USE KIV
DECLARE @RUNID varchar(10)
DECLARE @Path varchar(100)

SET @RUNID = 'BAD'
SET @Path = '$(ScriptDir)\'

execute Do_Import_Kiv_Csv_File_Memory @Path, 'BAD', 'memory1', 'memory', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'sbrk1', 'sbrk', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'queryevents1', 'queryevents', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'marker1', 'marker', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'freemem1', 'freemem', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'arena1', 'arena', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'arcs1', 'arcs', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'symbols1', 'symbols', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'flowdata1', 'flowdata', '1', '<<>>';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'flow1', 'flow', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'process1', 'process', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'hashloc1', 'hashloc', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'malid1', 'malid', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'color1', 'color', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'queries1', 'queries', '1', '<<>>';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'runs1', 'runs', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'objects1', 'objects', '1';
execute Do_Import_Kiv_Csv_File @Path, 'BAD', 'functions1', 'functions', '1';
