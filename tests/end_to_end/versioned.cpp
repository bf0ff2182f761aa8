// Any program: its file has a version.
int main()
{
    return 0;
}
