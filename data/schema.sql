create table TTS_table (LOG text collate nocase);
