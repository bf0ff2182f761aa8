' Shows what a script host costs by itself.
