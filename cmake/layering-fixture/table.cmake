list(APPEND KX_LAYERING "lower|kxcommonr/lower|")
list(APPEND KX_LAYERING "upper|kxcommonr/upper|lower")
