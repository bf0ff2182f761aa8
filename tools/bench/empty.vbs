' What a script host takes by itself.
