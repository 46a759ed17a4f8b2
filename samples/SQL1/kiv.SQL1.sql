USE KIV
DECLARE @RUNID varchar(10)
DECLARE @Path varchar(100)

SET @RUNID = 'SQL1'
SET @Path = '$(ScriptDir)\'

execute Do_Import_Kiv_Csv_File_Memory @Path, 'SQL1', 'memory1', 'memory', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'sbrk1', 'sbrk', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'queryevents1', 'queryevents', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'marker1', 'marker', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'freemem1', 'freemem', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'arena1', 'arena', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'arcs1', 'arcs', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'symbols1', 'symbols', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'flowdata1', 'flowdata', '1', '<<>>';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'flow1', 'flow', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'process1', 'process', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'hashloc1', 'hashloc', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'malid1', 'malid', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'color1', 'color', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'queries1', 'queries', '1', '<<>>';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'runs1', 'runs', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'objects1', 'objects', '1';
execute Do_Import_Kiv_Csv_File @Path, 'SQL1', 'functions1', 'functions', '1';
