USE KIV
DECLARE @RUNID varchar(10)
DECLARE @Path varchar(100)

SET @RUNID = 'R42'
SET @Path = '$(ScriptDir)\'

execute Do_Import_Kiv_Csv_File_Memory @Path, 'R42', 'memory1', 'memory', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'sbrk1', 'sbrk', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'queryevents1', 'queryevents', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'marker1', 'marker', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'freemem1', 'freemem', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'arena1', 'arena', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'arcs1', 'arcs', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'symbols1', 'symbols', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'flowdata1', 'flowdata', '1', '<<>>';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'flow1', 'flow', '1';
execute Do_Import_Kiv_Csv_File_Memory @Path, 'R42', 'memory1', 'memory', '2';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'process1', 'process', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'hashloc1', 'hashloc', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'malid1', 'malid', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'color1', 'color', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'queries1', 'queries', '1', '<<>>';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'runs1', 'runs', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'objects1', 'objects', '1';
execute Do_Import_Kiv_Csv_File @Path, 'R42', 'functions1', 'functions', '1';
execute Do_Import_Kiv_Csv_File_Memory @Path, 'R42', 'memory1', 'memory', '3';
execute Do_Import_Kiv_Csv_File_Memory @Path, 'R43', 'memory1', 'memory', '4';
