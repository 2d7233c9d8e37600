namespace collection {}
